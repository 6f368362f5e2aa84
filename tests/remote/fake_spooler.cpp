#include "tests/remote/fake_spooler.h"

#include <winspool.h>

#include <cstring>

namespace tsypr::test
{
namespace
{

FakeSpooler* g_spooler = nullptr;

BOOL Done(DWORD error)
{
    SetLastError(error);
    return error == 0 ? TRUE : FALSE;
}

// A record whose first member is the text, in the size that was asked for.
BOOL Answer(BYTE* buffer, DWORD capacity, DWORD* needed)
{
    *needed = g_spooler->infoSize;
    if (buffer == nullptr || capacity < g_spooler->infoSize)
    {
        return Done(g_spooler->sizeError);
    }
    if (g_spooler->dataError == 0)
    {
        wchar_t* place = reinterpret_cast<wchar_t*>(buffer + sizeof(PRINTER_INFO_4W));
        std::memcpy(buffer, &place, sizeof(place));
        wcscpy(place, g_spooler->text);
    }
    return Done(g_spooler->dataError);
}

} // namespace

FakeSpooler::FakeSpooler()
{
    g_spooler = this;
}

FakeSpooler::~FakeSpooler()
{
    g_spooler = nullptr;
}

} // namespace tsypr::test

using tsypr::test::g_spooler;

extern "C"
{
    decltype(OpenPrinterW) __real_OpenPrinterW, __wrap_OpenPrinterW;
    decltype(ClosePrinter) __real_ClosePrinter, __wrap_ClosePrinter;
    decltype(GetPrinterW) __real_GetPrinterW, __wrap_GetPrinterW;
    decltype(GetPrinterDriverW) __real_GetPrinterDriverW, __wrap_GetPrinterDriverW;

    BOOL WINAPI __wrap_OpenPrinterW(LPWSTR name, LPHANDLE printer, LPPRINTER_DEFAULTSW defaults)
    {
        if (g_spooler == nullptr)
        {
            return __real_OpenPrinterW(name, printer, defaults);
        }
        g_spooler->opened += g_spooler->openError == 0 ? 1 : 0;
        *printer = reinterpret_cast<HANDLE>(0x77);
        return tsypr::test::Done(g_spooler->openError);
    }

    BOOL WINAPI __wrap_ClosePrinter(HANDLE printer)
    {
        if (g_spooler == nullptr)
        {
            return __real_ClosePrinter(printer);
        }
        ++g_spooler->closed;
        return TRUE;
    }

    BOOL WINAPI __wrap_GetPrinterW(HANDLE printer, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed)
    {
        if (g_spooler == nullptr || level != 4)
        {
            return __real_GetPrinterW(printer, level, buffer, size, needed);
        }
        return tsypr::test::Answer(buffer, size, needed);
    }

    BOOL WINAPI
    __wrap_GetPrinterDriverW(HANDLE printer, LPWSTR name, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed)
    {
        if (g_spooler == nullptr || level != 1)
        {
            return __real_GetPrinterDriverW(printer, name, level, buffer, size, needed);
        }
        return tsypr::test::Answer(buffer, size, needed);
    }
}
