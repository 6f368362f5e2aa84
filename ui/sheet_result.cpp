#include "lib/log/log.h"
#include "module/log.h"
#include "module/reg_utils.h"
#include "ptprovider/boundary.h"
#include "remote/devmode_dump.h"
#include "remote/devmode_header_keeper.h"
#include "ui/capability_maps.h"
#include "ui/document_property_header.h"
#include "ui/sheet_flow.h"
#include "ui/ui_context.h"

#include <cstring>
#include <iterator>

namespace tsypr
{
namespace
{

constexpr wchar_t kUserKey[] = L"Software\\Zelmora\\Tessary\\PrintRedir";

bool HasField(const DEVMODEW* dm, DWORD flag) noexcept
{
    return (DevModeField(dm, &DEVMODEW::dmFields) & flag) != 0;
}

// Stores the value if the device mode reaches to the field.
template <typename Field>
void Store(DEVMODEW* dm, Field DEVMODEW::*field, Field value) noexcept
{
    if (DevModeHolds(dm, field))
    {
        dm->*field = value;
    }
}

// The same, and says that the field is set.
template <typename Field>
void StoreAndSet(DEVMODEW* dm, DWORD flag, Field DEVMODEW::*field, Field value) noexcept
{
    if (DevModeHolds(dm, field) && DevModeHolds(dm, &DEVMODEW::dmFields))
    {
        dm->dmFields |= flag;
        dm->*field = value;
    }
}

// The same for a field that was set already, and only then.
template <typename Field>
void StoreIfSet(DEVMODEW* dm, DWORD flag, Field DEVMODEW::*field, Field value) noexcept
{
    if (HasField(dm, flag))
    {
        Store(dm, field, value);
    }
}

void WriteFormName(DEVMODEW* dm, const UIContext& context) noexcept
{
    if (HasField(dm, DM_FORMNAME) && DevModeHolds(dm, &DEVMODEW::dmFormName))
    {
        const size_t length = wcsnlen(context.formName, std::size(dm->dmFormName) - 1);
        std::wmemcpy(dm->dmFormName, context.formName, length);
        dm->dmFormName[length] = L'\0';
    }
}

void WritePublic(DEVMODEW* dm, const UIContext& context) noexcept
{
    StoreAndSet(dm, DM_PAPERSIZE, &DEVMODEW::dmPaperSize, context.paperSize);
    WriteFormName(dm, context);
    StoreIfSet(dm, DM_DEFAULTSOURCE, &DEVMODEW::dmDefaultSource, context.paperSource);
    StoreIfSet(dm, DM_ORIENTATION, &DEVMODEW::dmOrientation, context.orientation);
    StoreIfSet(dm, DM_DUPLEX, &DEVMODEW::dmDuplex, context.duplex);
    StoreIfSet(dm, DM_MEDIATYPE, &DEVMODEW::dmMediaType, DWORD{context.mediaType});
    // The flag stays as the merged device mode has it, on purpose.
    Store(dm, &DEVMODEW::dmColor, context.color);
    StoreAndSet(dm, DM_PRINTQUALITY, &DEVMODEW::dmPrintQuality, static_cast<short>(context.printQuality));
    StoreAndSet(dm, DM_YRESOLUTION, &DEVMODEW::dmYResolution, static_cast<short>(context.yResolution));
}

// The application's collation stays; its number of copies gives way to the user's.
void WriteCopies(DEVMODEW* dm, DEVMODEW* in, const UIContext& context) noexcept
{
    if (in != nullptr)
    {
        PrintUtils::DumpDevMode(in, L"UI_REASON_SET_RESULT, dmIn:");
        if (HasField(in, DM_COPIES) && DevModeHolds(in, &DEVMODEW::dmCopies))
        {
            StoreAndSet(dm, DM_COPIES, &DEVMODEW::dmCopies, in->dmCopies);
        }
        if (HasField(in, DM_COLLATE) && DevModeHolds(in, &DEVMODEW::dmCollate))
        {
            StoreAndSet(dm, DM_COLLATE, &DEVMODEW::dmCollate, in->dmCollate);
        }
    }
    StoreAndSet(dm, DM_COPIES, &DEVMODEW::dmCopies, context.copies);
}

void RememberPrintChoice(const UIContext& context) noexcept
{
    DWORD locked = 0;
    RegUtils::ReadGPODwordValue("DisablePrintChoice", 0, &locked);
    const DWORD choice = context.printChoice;
    if (locked == 0 &&
        !SetRegistryValue(HKEY_CURRENT_USER, kUserKey, L"DefaultChoice", REG_DWORD, &choice, sizeof(choice)))
    {
        LogError("%s, failed to store print choice into registry.\n", kSheetFunction);
    }
}

void WriteWatermark(PrivateDevMode& block, const UIContext& context) noexcept
{
    std::memcpy(block.watermark, &context.watermark, sizeof(block.watermark));
    FixedText<kWatermarkTextChars> text;
    std::memcpy(text.text, context.watermark.text, sizeof(text.text));
    text.text[kWatermarkTextChars - 1] = L'\0';
    LogVerbose("%s, text: %S.\n", kSheetFunction, text.text);
}

// Takes the keyword at the index over; where there is none, the field stays as it is.
void WriteKeyword(WideField<kKeywordChars>& field, const std::vector<std::wstring>& keywords, int32_t index) noexcept
{
    if (index >= 0 && static_cast<size_t>(index) < keywords.size())
    {
        field.Write(keywords[static_cast<size_t>(index)].c_str());
    }
}

void WriteNup(PrivateDevMode& block, const UIContext& context)
{
    if ((block.featureBitmap & kFeatureNup) == 0)
    {
        return;
    }
    block.pagesPerSheet = context.pagesPerSheet;
    if (const auto capability = NupCapabilities.Find(context.printerName))
    {
        WriteKeyword(block.nupLayout, capability->directions, context.nupDirectionIndex);
    }
}

void WriteFinishing(PrivateDevMode& block, const UIContext& context)
{
    if ((block.featureBitmap & kFeatureFinishing) == 0)
    {
        return;
    }
    if (const auto capability = FinishingCapabilities.Find(context.printerName))
    {
        WriteKeyword(block.staple, capability->staples, context.stapleIndex);
        WriteKeyword(block.punch, capability->punches, context.punchIndex);
    }
}

void WritePrivate(DEVMODEW* dm, const UIContext& context)
{
    PrivateDevMode* block = GetPrivateDevMode(dm);
    if (block == nullptr)
    {
        return; // the private settings were off, and none is remembered
    }
    const DevModeHeaderKeeper keeper(dm);
    block->isPrintAsImage = context.printAsImage;
    block->isShowPreDlg = context.showPreDialog;
    block->printTargetChoice = context.printChoice;
    RememberPrintChoice(context);
    WriteWatermark(*block, context);
    block->compression = context.compression;
    WriteNup(*block, context);
    WriteFinishing(*block, context);
}

void WriteOutput(DEVMODEW* out, const DEVMODEW* dm, const UIContext& context) noexcept
{
    std::memmove(static_cast<void*>(out), dm, DevModeTotalSize(dm));
    const bool custom = DevModeField(out, &DEVMODEW::dmPaperSize) == DMPAPER_USER && context.customPaperWidth >= 1 &&
                        context.customPaperLength >= 1;
    if (custom)
    {
        StoreAndSet(out, DM_PAPERWIDTH, &DEVMODEW::dmPaperWidth, static_cast<short>(context.customPaperWidth));
        StoreAndSet(out, DM_PAPERLENGTH, &DEVMODEW::dmPaperLength, static_cast<short>(context.customPaperLength));
    }
    else if (DevModeHolds(out, &DEVMODEW::dmFields))
    {
        out->dmFields &= ~static_cast<DWORD>(DM_PAPERLENGTH | DM_PAPERWIDTH);
    }
    PrintUtils::DumpDevMode(out, L"UI_REASON_SET_RESULT, dmOut:");
}

} // namespace

LONG TakeResult(const PROPSHEETUI_INFO& info, const SETRESULT_INFO& result) noexcept
{
    const auto* context = static_cast<const OpenedSheet*>(reinterpret_cast<const UIContext*>(info.UserData));
    if (result.Result != CPSUI_OK || context == nullptr || context->isReadOnly)
    {
        return 1;
    }
    DEVMODEW* dm = context->devMode;
    WritePublic(dm, *context);
    WriteCopies(dm, context->input, *context);
    try
    {
        WritePrivate(dm, *context);
    }
    catch (...)
    {
        ResultOfException(kSheetFunction);
    }
    if (context->output != nullptr)
    {
        WriteOutput(context->output, dm, *context);
    }
    return 1;
}

} // namespace tsypr
