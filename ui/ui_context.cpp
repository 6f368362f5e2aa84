#include "ui/ui_context.h"

#include "module/log.h"
#include "ptprovider/boundary.h"
#include "ui/capability_maps.h"
#include "ui/print_caps_thread.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <string_view>

namespace tsypr
{
namespace
{

constexpr char kFunction[] = "InitUIContext";

// The order of the fields is fixed; what is this module's own comes last.
constexpr size_t kOffsets[] = {offsetof(UIContext, comPropSheet),
                               offsetof(UIContext, comPropSheetHandle),
                               offsetof(UIContext, layoutPage),
                               offsetof(UIContext, paperPage),
                               offsetof(UIContext, watermarkPage),
                               offsetof(UIContext, advancedPage),
                               offsetof(UIContext, finishingPage),
                               offsetof(UIContext, devMode),
                               offsetof(UIContext, printerName),
                               offsetof(UIContext, paperSource),
                               offsetof(UIContext, paperSize),
                               offsetof(UIContext, customPaperWidth),
                               offsetof(UIContext, customPaperLength),
                               offsetof(UIContext, formName),
                               offsetof(UIContext, mediaType),
                               offsetof(UIContext, orientation),
                               offsetof(UIContext, duplex),
                               offsetof(UIContext, color),
                               offsetof(UIContext, printQuality),
                               offsetof(UIContext, yResolution),
                               offsetof(UIContext, compression),
                               offsetof(UIContext, printChoice),
                               offsetof(UIContext, showPreDialog),
                               offsetof(UIContext, printAsImage),
                               offsetof(UIContext, copies),
                               offsetof(UIContext, pagesPerSheet),
                               offsetof(UIContext, nupDirectionIndex),
                               offsetof(UIContext, stapleIndex),
                               offsetof(UIContext, punchIndex),
                               offsetof(UIContext, watermark),
                               offsetof(UIContext, isReadOnly)};
static_assert(std::is_sorted(std::begin(kOffsets), std::end(kOffsets)));

// The options are asked for on a thread of their own because that needs a COM apartment, and the host's stays as it is.
void PrefetchCapabilities(DEVMODEW* dm) noexcept
{
    const HANDLE thread = CreateThread(nullptr, 0, InitPrintCapsThreadProc, dm, 0, nullptr);
    if (thread == nullptr)
    {
        LogError("%s, Failed to create InitPrintCaps thread\n", kFunction);
        return;
    }
    LogVerbose("%s, Successfully created InitPrintCaps thread\n", kFunction);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}

// The value of a public field, or the default where its flag is clear.
template <typename Field>
Field FieldOr(const DEVMODEW* dm, DWORD flag, Field DEVMODEW::*field, Field absent) noexcept
{
    return (DevModeField(dm, &DEVMODEW::dmFields) & flag) != 0 && DevModeHolds(dm, field) ? dm->*field : absent;
}

void LoadPaper(UIContext& context, const DEVMODEW* dm) noexcept
{
    const DWORD fields = DevModeField(dm, &DEVMODEW::dmFields);
    context.paperSource = DevModeField(dm, &DEVMODEW::dmDefaultSource);
    context.paperSize = FieldOr(dm, DM_PAPERSIZE, &DEVMODEW::dmPaperSize, short{DMPAPER_A4});
    context.customPaperWidth = 0;
    context.customPaperLength = 0;
    constexpr DWORD kDimensions = DM_PAPERLENGTH | DM_PAPERWIDTH;
    if (DevModeField(dm, &DEVMODEW::dmPaperSize) == DMPAPER_USER && (fields & kDimensions) == kDimensions)
    {
        context.customPaperWidth = DevModeField(dm, &DEVMODEW::dmPaperWidth);
        context.customPaperLength = DevModeField(dm, &DEVMODEW::dmPaperLength);
    }
    context.formName[0] = L'\0';
    if ((fields & DM_FORMNAME) != 0 && DevModeHolds(dm, &DEVMODEW::dmFormName))
    {
        const size_t length = wcsnlen(dm->dmFormName, std::size(context.formName) - 1);
        std::wmemcpy(context.formName, dm->dmFormName, length);
        context.formName[length] = L'\0';
    }
    context.mediaType = FieldOr(dm, DM_MEDIATYPE, &DEVMODEW::dmMediaType, DWORD{DMMEDIA_STANDARD});
}

void LoadPublic(UIContext& context, const DEVMODEW* dm) noexcept
{
    LoadPaper(context, dm);
    context.orientation = FieldOr(dm, DM_ORIENTATION, &DEVMODEW::dmOrientation, short{DMORIENT_PORTRAIT});
    context.duplex = FieldOr(dm, DM_DUPLEX, &DEVMODEW::dmDuplex, short{DMDUP_SIMPLEX});
    context.color = FieldOr(dm, DM_COLOR, &DEVMODEW::dmColor, short{DMCOLOR_MONOCHROME});
    context.printQuality = DevModeField(dm, &DEVMODEW::dmPrintQuality);
    context.yResolution = DevModeField(dm, &DEVMODEW::dmYResolution);
    context.copies = FieldOr(dm, DM_COPIES, &DEVMODEW::dmCopies, short{1});
}

// The first place of the keyword in the list; 0 when it is empty or not there.
int32_t PositionOf(std::wstring_view keyword, const std::vector<std::wstring>& list) noexcept
{
    const auto place = keyword.empty() ? list.end() : std::find(list.begin(), list.end(), keyword);
    return place != list.end() ? static_cast<int32_t>(place - list.begin()) : 0;
}

void LoadFinishing(UIContext& context, const PrivateDevMode& block)
{
    context.stapleIndex = 0;
    context.punchIndex = 0;
    if ((block.featureBitmap & kFeatureFinishing) == 0)
    {
        return;
    }
    if (const auto capability = FinishingCapabilities.Find(context.printerName))
    {
        context.stapleIndex = PositionOf(block.staple.Read().text, capability->staples);
        context.punchIndex = PositionOf(block.punch.Read().text, capability->punches);
    }
}

void LoadNup(UIContext& context, const PrivateDevMode& block)
{
    context.nupDirectionIndex = 0;
    if ((block.featureBitmap & kFeatureNup) == 0)
    {
        return;
    }
    if (const auto capability = NupCapabilities.Find(context.printerName))
    {
        context.nupDirectionIndex = PositionOf(block.nupLayout.Read().text, capability->directions);
    }
}

void LoadWatermark(WatermarkBlock& watermark, const PrivateDevMode* block) noexcept
{
    watermark = {};
    if (block != nullptr)
    {
        std::memcpy(&watermark, block->watermark, sizeof(watermark));
    }
    if (watermark.text[0] != L'\0')
    {
        return;
    }
    watermark = {};
    watermark.font.lfHeight = 96;
    watermark.font.lfWeight = FW_BOLD;
    std::wcscpy(watermark.font.lfFaceName, L"Times New Roman");
    watermark.color = RGB(255, 0, 0);
    std::wcscpy(watermark.text, L"No Watermark");
}

void LoadPrivate(UIContext& context, const PrivateDevMode& block)
{
    context.compression = block.compression;
    context.printChoice = block.printTargetChoice;
    context.showPreDialog = block.isShowPreDlg;
    context.printAsImage = block.isPrintAsImage;
    context.pagesPerSheet = (block.featureBitmap & kFeatureNup) != 0 ? block.pagesPerSheet : 0;
    // These look into the maps, which takes memory, so they come last.
    LoadFinishing(context, block);
    LoadNup(context, block);
}

} // namespace

void InitUIContext(UIContext* context, DEVMODEW* dm) noexcept
{
    const PrivateDevMode* block = GetPrivateDevMode(dm);
    if (block != nullptr && (block->featureBitmap & (kFeatureNup | kFeatureFinishing)) != 0)
    {
        PrefetchCapabilities(dm);
    }
    LoadPublic(*context, dm);
    LoadWatermark(context->watermark, block);
    if (block == nullptr)
    {
        return; // the private settings stay as they were made, all off
    }
    try
    {
        LoadPrivate(*context, *block);
    }
    catch (...)
    {
        ResultOfException(kFunction);
    }
}

} // namespace tsypr
