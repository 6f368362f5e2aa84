#include "language/resource_ids.h"
#include "module/interface_dll.h"
#include "module/log.h"
#include "module/malloc_ptr.h"
#include "remote/devmode_dump.h"
#include "remote/devmode_fetch.h"
#include "remote/devmode_header_keeper.h"
#include "remote/devmode_merge.h"
#include "remote/printer_name.h"
#include "ui/advanced_page.h"
#include "ui/caller_buffers.h"
#include "ui/document_property_header.h"
#include "ui/driver_name.h"
#include "ui/finishing_page.h"
#include "ui/layout_page.h"
#include "ui/paper_page.h"
#include "ui/sheet_flow.h"
#include "ui/ui_context.h"
#include "watermark/watermark_page.h"

#include <winspool.h>

#include <cstddef>
#include <memory>
#include <new>

namespace tsypr
{
namespace
{

using PrinterName = wchar_t[kPrinterNameChars];

struct PageEntry
{
    WORD dialog;
    DLGPROC procedure;
    HANDLE UIContext::*handle;
    const char* message; // when there is no memory for it
};

// In the order in which they are shown.
constexpr PageEntry kPages[] = {
    {IDD_LAYOUT, LayoutProc, &UIContext::layoutPage, "%s, failed to allocate memory for layout page.\n"},
    {IDD_PAPER, PaperProc, &UIContext::paperPage, "%s, failed to allocate memory for paper page.\n"},
    {IDD_ADVANCED, AdvancedProc, &UIContext::advancedPage, "%s, failed to allocate memory for advanced page.\n"},
    {IDD_FINISHING, FinishingProc, &UIContext::finishingPage, "%s, failed to allocate memory for finishing page.\n"},
};

// For this driver's own printers only. The message is meant to say "compression".
constexpr PageEntry kWatermarkPage = {
    IDD_WATERMARK, WatermarkProc, &UIContext::watermarkPage, "%s, failed to allocate memory for compression page.\n"};

// The record with the member that the mingw-w64 headers lack.
struct WholePropSheetPage
{
    PROPSHEETPAGEW page;
    HBITMAP headerBitmap;
};
static_assert(offsetof(WholePropSheetPage, headerBitmap) == 96);
static_assert(sizeof(WholePropSheetPage) == 104);

// Returns false when there is no memory. A page that the sheet refuses is missing, which is not a failure.
bool AddPage(PROPSHEETUI_INFO& info, UIContext& context, const PageEntry& entry) noexcept
{
    const MallocPtr<WholePropSheetPage> record(
        static_cast<WholePropSheetPage*>(std::calloc(1, sizeof(WholePropSheetPage))));
    if (record == nullptr)
    {
        LogError(entry.message, kSheetFunction); // NOLINT(clang-diagnostic-format-security)
        return false;
    }
    PROPSHEETPAGEW& page = record->page;
    page.dwSize = sizeof(WholePropSheetPage);
    page.hInstance = ResourceModule;
    page.pszTemplate = MAKEINTRESOURCEW(entry.dialog);
    page.pszTitle = L"";
    page.pfnDlgProc = entry.procedure;
    page.lParam = reinterpret_cast<LPARAM>(&context);
    const LONG_PTR handle =
        info.pfnComPropSheet(info.hComPropSheet, CPSFUNC_ADD_PROPSHEETPAGEW, reinterpret_cast<LPARAM>(&page), 0);
    if (handle != 0)
    {
        context.*entry.handle = reinterpret_cast<HANDLE>(handle);
        info.Result = 0;
    }
    return true;
}

bool AddPages(PROPSHEETUI_INFO& info, UIContext& context) noexcept
{
    for (const PageEntry& entry : kPages)
    {
        if (!AddPage(info, context, entry))
        {
            return false;
        }
    }
    return !IsOwnDriver() || AddPage(info, context, kWatermarkPage);
}

void FindDriver(const PrinterName& name) noexcept
{
    std::wstring driver = PrintUtils::GetDriverName(name);
    LogVerbose("%s, the UPD driver name is %S\n", kSheetFunction, driver.c_str());
    SetCurrentDriverName(std::move(driver));
}

// Puts the caller's settings over the printer's, into the caller's output.
bool Merge(const DOCUMENTPROPERTYHEADER& header, DEVMODEW* output, DEVMODEW* fetched, const PrinterName& name) noexcept
{
    if (header.fMode == 0)
    {
        return true;
    }
    PrintUtils::DumpDevMode(InputOf(header, fetched), L"PROPSHEETUI_REASON_INIT, dmIn:");
    StorePrinterName(fetched, name);
    DEVMODEW* merged = output == nullptr && header.pdmOut != nullptr ? fetched : output;
    if (!MergeAndCopyDM(merged, header.pdmIn, fetched, header.fMode))
    {
        return false;
    }
    PrintUtils::DumpDevMode(merged, L"PROPSHEETUI_REASON_INIT, dmOut:");
    return true;
}

UIContext* MakeContext(PROPSHEETUI_INFO& info,
                       const DOCUMENTPROPERTYHEADER& header,
                       DEVMODEW* output,
                       const SharedDevMode& fetched) noexcept
{
    std::unique_ptr<OpenedSheet> sheet(new (std::nothrow) OpenedSheet());
    DEVMODEW* devMode = output != nullptr ? output : fetched.get();
    if (sheet != nullptr && (header.fMode & DM_NOPERMISSION) != 0)
    {
        sheet->isReadOnly = true;
        sheet->shown = CopyDevMode(devMode);
        devMode = sheet->shown.get();
    }
    if (sheet == nullptr || devMode == nullptr)
    {
        LogError("%s, failed to allocate memory for the sheet.\n", kSheetFunction);
        return nullptr;
    }
    sheet->fetched = fetched;
    sheet->input = InputOf(header, fetched.get());
    sheet->output = output;
    sheet->devMode = devMode;
    sheet->comPropSheet = info.pfnComPropSheet;
    sheet->comPropSheetHandle = info.hComPropSheet;
    info.UserData = reinterpret_cast<ULONG_PTR>(static_cast<UIContext*>(sheet.get()));
    return sheet.release();
}

} // namespace

void StorePrinterName(DEVMODEW* devMode, const PrinterName& name) noexcept
{
    if (PrivateDevMode* block = GetPrivateDevMode(devMode))
    {
        const DevModeHeaderKeeper keeper(devMode);
        block->printerName.Write(name);
    }
}

LONG OpenSheet(PROPSHEETUI_INFO& info) noexcept
{
    const auto* header = reinterpret_cast<const DOCUMENTPROPERTYHEADER*>(info.lParamInit);
    if (header == nullptr || info.pfnComPropSheet == nullptr)
    {
        return 0;
    }
    PrinterName name = {};
    NormalizePrinterName(name, header->pszPrinterName);
    FindDriver(name);
    const SharedDevMode fetched = GetDevModeByVPrinterName(name);
    if (fetched == nullptr)
    {
        LogError("%s, failed to retrieve devmode for printer %S.\n", kSheetFunction, name);
        return 0;
    }
    DEVMODEW* output = OutputOf(*header, fetched.get());
    if (!Merge(*header, output, fetched.get(), name))
    {
        return 0;
    }
    UIContext* context = MakeContext(info, *header, output, fetched);
    if (context == nullptr)
    {
        return 0;
    }
    std::wmemcpy(context->printerName, name, kPrinterNameChars);
    InitUIContext(context, context->devMode);
    return AddPages(info, *context) ? 1 : 0;
}

LONG CloseSheet(PROPSHEETUI_INFO& info) noexcept
{
    delete static_cast<OpenedSheet*>(reinterpret_cast<UIContext*>(info.UserData));
    info.UserData = 0;
    return 1;
}

} // namespace tsypr
