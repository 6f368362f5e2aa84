#ifndef TESSARY_SERVICE_VP_API_H
#define TESSARY_SERVICE_VP_API_H

#include <windows.h>

// The remote printer service, tsyprserverapi.dll: access to the printers on the client machine. Any thread may call
// any function. Everything that a Vp function hands out stays the library's own and is given back with the matching
// VpFree function; null, stale and foreign handles and pointers are refused without harm. Status values are Windows
// error codes, ERROR_SUCCESS (0) for success.

extern "C"
{
    // Opens a client printer by its exact name. *handle is null when there is no such printer.
    LONG WINAPI VpOpenRemotePrinter(const WCHAR* printerName, void** handle);
    void WINAPI VpCloseRemotePrinter(void* handle);

    // The printer's complete default device mode, dmSize + dmDriverExtra bytes; null on failure.
    LONG WINAPI VpGetDevMode(void* handle, DEVMODEW** deviceMode);
    // Takes replies of VpGetDevMode and device modes of VpMakePTQuery.
    void WINAPI VpFreeDevMode(void* deviceMode);

    // Asks for one DC_* index. *queryResult is what DeviceCapabilities answers, -1 on failure; *data is null and
    // *dataSize (bytes) 0 for an index without a list and for an empty list. With both pointers null only the result is
    // asked for. deviceModeSize is the size in bytes of deviceMode; it may be null. The answers describe the printer,
    // so a device mode does not change them.
    LONG WINAPI VpGetDeviceCapabilities(void* handle,
                                        WORD index,
                                        DWORD* dataSize,
                                        void** data,
                                        DWORD deviceModeSize,
                                        const DEVMODEW* deviceMode,
                                        LONG* queryResult);
    void WINAPI VpFreeDeviceCapabilities(void* data);

    // Print ticket work. Kind 0: ticket to device mode, which VpFreeDevMode takes back; 1: device mode to ticket; 2:
    // ticket to capabilities; 3: validation of a ticket. inputSize is in bytes; 0 stands for no wishes, except in a
    // validation. *queryResult: S_PT_NO_CONFLICT (0x00040001) or S_PT_CONFLICT_RESOLVED (0x00040002) from kinds 0 and
    // 3, S_OK from 1 and 2; E_PRINTTICKET_FORMAT (0x80040003) for a ticket that cannot be read, another failure code
    // for anything else. A failure leaves *output null and *outputSize 0.
    LONG WINAPI VpMakePTQuery(void* handle,
                              DWORD kind,
                              DWORD inputSize,
                              const void* input,
                              DWORD* outputSize,
                              void** output,
                              LONG* queryResult);
    void WINAPI VpFreePTData(void* output);

    // What this process has asked of the library, for tests and benchmarks.
    struct VpCallCounters
    {
        ULONGLONG openRemotePrinter;
        ULONGLONG closeRemotePrinter;
        ULONGLONG getDevMode;
        ULONGLONG freeDevMode;
        ULONGLONG getDeviceCapabilities;
        ULONGLONG freeDeviceCapabilities;
        ULONGLONG makePTQuery;
        ULONGLONG freePTData;
        ULONGLONG outstandingHandles;
        ULONGLONG outstandingReplies;
    };

    void WINAPI VpReadCallCounters(VpCallCounters* counters);
    // Sets the eight call counters to 0; handles and replies stay outstanding.
    void WINAPI VpResetCallCounters(void);

    // Why printer profiles were refused: lines "file: field: reason", each ending in a line feed. Writes as much as
    // fits in capacityInChars with its terminator, and returns the whole text's length without the terminator. The
    // buffer may be null with capacity 0.
    DWORD WINAPI VpReadProfileProblems(WCHAR* buffer, DWORD capacityInChars);
}

#endif
