// The printer-driver functions that the module exports, as Windows calls them.
#ifndef TESSARY_REMOTE_DRIVER_EXPORTS_H
#define TESSARY_REMOTE_DRIVER_EXPORTS_H

#include <windows.h>

extern "C"
{

    // Answers one DC_* question from the client printer. With an output buffer, which the caller has made large enough
    // after asking for the count, the data is copied there. Returns the client's answer, or -1 when the printer cannot
    // be opened.
    DWORD WINAPI DrvDeviceCapabilities(
        HANDLE hPrinter, PWSTR pDeviceName, WORD iDevCap, PVOID pvOutput, PDEVMODEW pDevMode) noexcept;

    // The spooler's variant of the same; the buffer size is deliberately not looked at.
    DWORD WINAPI DrvSplDeviceCaps(HANDLE hPrinter,
                                  PWSTR pDeviceName,
                                  WORD Capability,
                                  PVOID pOutput,
                                  DWORD cchBufSize,
                                  PDEVMODEW pDevMode) noexcept;

    // Gives the driver default device mode or copies one device mode into another. Returns FALSE with the last error
    // set to ERROR_INVALID_PARAMETER, ERROR_FILE_NOT_FOUND or ERROR_INSUFFICIENT_BUFFER. `*pcbNeeded` is in bytes and
    // is left alone on failures other than the size query.
    BOOL WINAPI
    DrvConvertDevMode(LPWSTR pPrinterName, PDEVMODEW pdmIn, PDEVMODEW pdmOut, PLONG pcbNeeded, DWORD fMode) noexcept;

    // What the driver does not implement: returns 1 and does nothing. Also exported under other names.
    BOOL WINAPI DevQueryPrintEx(void* devQueryPrintInfo) noexcept;
}

#endif
