// The remote printer service library: everything this driver knows of a printer it asks there.
#ifndef TESSARY_REMOTE_REMOTE_PRINTER_SERVICE_H
#define TESSARY_REMOTE_REMOTE_PRINTER_SERVICE_H

#include <windows.h>

#include <cstdint>

namespace tsypr
{

// An open client printer; null means "not open".
using RemotePrinterHandle = void*;

// The service library, bound at start-up and read-only from then on. What the service hands out belongs to it: callers
// copy it and give it back through the matching VpFree function.
struct RemotePrinterService
{
    HMODULE ServerApiModule; // null when not loaded

    // Success is a non-null handle; the result value says nothing.
    DWORD(WINAPI* VpOpenRemotePrinter)(const wchar_t* printerName, RemotePrinterHandle* handle);
    void(WINAPI* VpCloseRemotePrinter)(RemotePrinterHandle handle);
    DWORD(WINAPI* VpGetDevMode)(RemotePrinterHandle handle, DEVMODEW** devMode);
    void(WINAPI* VpFreeDevMode)(void* devMode);
    // `capability` is a DC_* value; sizes in bytes; the query result is what DeviceCapabilities returned on the client.
    DWORD(WINAPI* VpGetDeviceCapabilities)
    (RemotePrinterHandle handle,
     uint16_t capability,
     uint32_t* dataSize,
     void** data,
     uint32_t devModeSize,
     const DEVMODEW* devMode,
     int32_t* queryResult);
    void(WINAPI* VpFreeDeviceCapabilities)(void* data);
    DWORD(WINAPI* VpMakePTQuery)
    (RemotePrinterHandle handle,
     uint32_t kind,
     uint32_t inputSize,
     const void* input,
     uint32_t* outputSize,
     void** output,
     int32_t* queryResult);
    void(WINAPI* VpFreePTData)(void* data);
};

extern RemotePrinterService RemoteService;

// Loads the service library and resolves its eight functions. Returns false, with nothing loaded, when the library or
// one of the functions is missing.
bool InitServerApiLib() noexcept;

// Releases the service library and forgets its functions. Harmless when nothing is loaded.
void FreeServerApiLib() noexcept;

// Opens the client printer behind a local printer name. Returns null on failure, which the caller reports; otherwise
// the caller closes the handle with VpCloseRemotePrinter.
RemotePrinterHandle OpenRemotePrinterByName(const wchar_t* localPrinterName) noexcept;

} // namespace tsypr

#endif
