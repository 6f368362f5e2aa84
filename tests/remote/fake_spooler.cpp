#include "tests/remote/fake_spooler.h"

#include <winspool.h>

#include <cstring>

namespace tsypr::test
{

SpoolerScript g_spooler;

namespace
{

BOOL Done(DWORD error)
{
    SetLastError(error);
    return error == 0 ? TRUE : FALSE;
}

// A record whose first member is the text, in the size that was asked for.
BOOL Answer(BYTE* buffer, DWORD capacity, DWORD* needed)
{
    *needed = g_spooler.infoSize;
    if (buffer == nullptr || capacity < g_spooler.infoSize)
    {
        return Done(g_spooler.sizeError);
    }
    if (g_spooler.dataError == 0)
    {
        wchar_t* place = reinterpret_cast<wchar_t*>(buffer + sizeof(PRINTER_INFO_4W));
        std::memcpy(buffer, &place, sizeof(place));
        wcscpy(place, g_spooler.text);
    }
    return Done(g_spooler.dataError);
}

} // namespace
} // namespace tsypr::test

using namespace tsypr::test;

extern "C"
{
    decltype(OpenPrinterW) __wrap_OpenPrinterW;
    decltype(ClosePrinter) __wrap_ClosePrinter;
    decltype(GetPrinterW) __wrap_GetPrinterW;
    decltype(GetPrinterDriverW) __wrap_GetPrinterDriverW;

    BOOL WINAPI __wrap_OpenPrinterW(LPWSTR, LPHANDLE printer, LPPRINTER_DEFAULTSW)
    {
        g_spooler.stillOpen += g_spooler.openError == 0 ? 1 : 0;
        *printer = reinterpret_cast<HANDLE>(0x77);
        return Done(g_spooler.openError);
    }

    BOOL WINAPI __wrap_ClosePrinter(HANDLE)
    {
        --g_spooler.stillOpen;
        return TRUE;
    }

    BOOL WINAPI __wrap_GetPrinterW(HANDLE, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed)
    {
        return level == 4 ? Answer(buffer, size, needed) : Done(ERROR_INVALID_LEVEL);
    }

    BOOL WINAPI __wrap_GetPrinterDriverW(HANDLE, LPWSTR, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed)
    {
        return level == 1 ? Answer(buffer, size, needed) : Done(ERROR_INVALID_LEVEL);
    }
}
