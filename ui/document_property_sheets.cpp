#include "ui/document_property_sheets.h"

#include "module/log.h"
#include "module/malloc_ptr.h"
#include "remote/devmode_dump.h"
#include "remote/devmode_fetch.h"
#include "remote/devmode_merge.h"
#include "remote/printer_name.h"
#include "remote/private_devmode.h"
#include "ui/caller_buffers.h"
#include "ui/sheet_flow.h"

#include <winspool.h>

namespace tsypr
{
namespace
{

using PrinterName = wchar_t[kPrinterNameChars];

// Handles are logged as the 32-bit numbers they are.
unsigned HandleNumber(HANDLE handle) noexcept
{
    return static_cast<unsigned>(reinterpret_cast<uintptr_t>(handle));
}

bool NameFromHandle(HANDLE printer, PrinterName& name) noexcept
{
    DWORD needed = 0;
    GetPrinterW(printer, 4, nullptr, 0, &needed);
    if (needed == 0)
    {
        LogError("%s, failed to get printer info size from handle 0x%x.\n", kSheetFunction, HandleNumber(printer));
        return false;
    }
    const MallocPtr<BYTE> buffer(static_cast<BYTE*>(std::malloc(needed)));
    if (buffer == nullptr || GetPrinterW(printer, 4, buffer.get(), needed, &needed) == FALSE)
    {
        LogError("%s, failed to get printer name from handle 0x%x.\n", kSheetFunction, HandleNumber(printer));
        return false;
    }
    const wchar_t* printerName = reinterpret_cast<const PRINTER_INFO_4W*>(buffer.get())->pPrinterName;
    LogVerbose("%s, obtained printer name %S from handle 0x%x.\n", kSheetFunction, printerName, HandleNumber(printer));
    NormalizePrinterName(name, printerName);
    return true;
}

bool NameFromHeader(const DOCUMENTPROPERTYHEADER& header, PrinterName& name) noexcept
{
    if (header.pszPrinterName == nullptr || *header.pszPrinterName == L'\0')
    {
        LogError("%s, failed to get printer name.\n", kSheetFunction);
        return false;
    }
    LogVerbose("%s, prop hdr's printer name is %S.\n", kSheetFunction, header.pszPrinterName);
    NormalizePrinterName(name, header.pszPrinterName);
    return true;
}

// The spooler wants the size of the printer's device mode, or a merged copy of it.
LONG AnswerWithoutUI(DOCUMENTPROPERTYHEADER& header) noexcept
{
    PrinterName name = {};
    const bool named =
        header.hPrinter != INVALID_HANDLE_VALUE ? NameFromHandle(header.hPrinter, name) : NameFromHeader(header, name);
    if (!named)
    {
        return 0;
    }
    const SharedDevMode fetched = GetDevModeByVPrinterName(name);
    if (fetched == nullptr)
    {
        LogError("%s, failed to retrieve devmode for printer %S\n", kSheetFunction, name);
        return 0;
    }
    if (header.fMode == 0 || header.pdmOut == nullptr)
    {
        header.cbOut = static_cast<DWORD>(DevModeTotalSize(fetched.get()));
        return static_cast<LONG>(header.cbOut);
    }
    PrintUtils::DumpDevMode(InputOf(header, fetched.get()), L"UIINFO is NULL, dmIn:");
    StorePrinterName(fetched.get(), name);
    DEVMODEW* out = OutputOf(header, fetched.get());
    if (!MergeAndCopyDM(out != nullptr ? out : fetched.get(), header.pdmIn, fetched.get(), header.fMode))
    {
        return 0;
    }
    PrintUtils::DumpDevMode(out, L"UIINFO is NULL, dmOut:");
    return 1;
}

} // namespace
} // namespace tsypr

LONG WINAPI DrvDocumentPropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam) noexcept
{
    if (pPSUIInfo == nullptr)
    {
        auto* header = reinterpret_cast<DOCUMENTPROPERTYHEADER*>(lParam);
        return header != nullptr ? tsypr::AnswerWithoutUI(*header) : 0;
    }
    switch (pPSUIInfo->Reason)
    {
    case PROPSHEETUI_REASON_INIT:
        return tsypr::OpenSheet(*pPSUIInfo);
    case PROPSHEETUI_REASON_DESTROY:
        return tsypr::CloseSheet(*pPSUIInfo);
    case PROPSHEETUI_REASON_SET_RESULT:
    {
        const auto* result = reinterpret_cast<const SETRESULT_INFO*>(lParam);
        return result != nullptr ? tsypr::TakeResult(*pPSUIInfo, *result) : 1;
    }
    default:
        return 1; // among others the sheet's title, which the system's own serves
    }
}
