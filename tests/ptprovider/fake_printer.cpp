#include "tests/ptprovider/provider_fixture.h"

#include <winspool.h>

namespace tsypr::test
{

PrinterScript g_printer;

} // namespace tsypr::test

extern "C"
{
    decltype(GetPrinterW) __wrap_GetPrinterW;

    BOOL WINAPI __wrap_GetPrinterW(HANDLE, DWORD level, LPBYTE buffer, DWORD size, LPDWORD needed)
    {
        using tsypr::test::g_printer;
        EXPECT_EQ(2U, level);
        *needed = g_printer.needed;
        if (buffer == nullptr || size < g_printer.needed || g_printer.fails)
        {
            return FALSE;
        }
        PRINTER_INFO_2W info = {};
        info.pPrinterName = reinterpret_cast<wchar_t*>(buffer + sizeof(info));
        memcpy(buffer, &info, sizeof(info));
        wcscpy(info.pPrinterName, g_printer.name);
        return TRUE;
    }
}
