#include "ui/layout_page.h"

#include "language/resource_ids.h"
#include "module/interface_dll.h"
#include "module/log.h"
#include "remote/driver_exports.h"
#include "ui/capability_maps.h"
#include "ui/page_controls.h"
#include "ui/page_texts.h"
#include "ui/property_page.h"

#include <cstdlib>
#include <cwchar>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace tsypr
{
namespace
{

constexpr PageText kPortrait = {IDS_PORTRAIT, L"Portrait"};
constexpr PageText kLandscape = {IDS_LANDSCAPE, L"Landscape"};

// In the order of the DMDUP_ values, of which the first is 1.
constexpr PageText kDuplexTexts[] = {{IDS_DUPLEX_NONE, L"None"},
                                     {IDS_FLIP_LONG_EDGE, L"Flip On Long Edge"},
                                     {IDS_FLIP_SHORT_EDGE, L"Flip On Short Edge"}};

void ShowOrientation(HWND dialog, bool landscape) noexcept
{
    ShowPicture(dialog, IDC_ORIENTATION_PICTURE, landscape ? LandscapeBitmap : PortraitBitmap);
    NameControl(dialog, IDC_ORIENTATION_PICTURE, LoadPageText(landscape ? kLandscape : kPortrait).text);
}

void FillOrientation(HWND dialog, DEVMODEW* dm, UIContext& context)
{
    const DropDownList list(dialog, IDC_ORIENTATION);
    list.Enable();
    list.Clear();
    if (DrvDeviceCapabilities(nullptr, context.printerName, DC_ORIENTATION, nullptr, dm) == 0)
    {
        list.Add(LoadPageText(kPortrait).text);
        list.Select(0);
        list.Disable();
        return;
    }
    list.Add(LoadPageText(kPortrait).text);
    list.Add(LoadPageText(kLandscape).text);
    // Whatever dmFields says.
    const bool landscape = DevModeField(dm, &DEVMODEW::dmOrientation) != DMORIENT_PORTRAIT;
    list.Select(landscape ? 1 : 0);
    ShowOrientation(dialog, landscape);
}

bool IsDuplexLocked(const DEVMODEW* dm) noexcept
{
    const PrivateDevMode* block = GetPrivateDevMode(dm);
    return (DevModeField(dm, &DEVMODEW::dmFields) & DM_DUPLEX) != 0 && block != nullptr &&
           (block->lockedSettings & kLockedDuplex) != 0;
}

void FillDuplex(HWND dialog, DEVMODEW* dm, UIContext& context)
{
    const DropDownList list(dialog, IDC_DUPLEX);
    list.Enable();
    list.Clear();
    const int duplex = DevModeField(dm, &DEVMODEW::dmDuplex);
    if (IsDuplexLocked(dm))
    {
        if (duplex >= DMDUP_SIMPLEX && duplex <= DMDUP_HORIZONTAL)
        {
            list.Add(LoadPageText(kDuplexTexts[duplex - DMDUP_SIMPLEX]).text);
        }
        list.Select(0);
        list.Disable();
        return;
    }
    for (const PageText& text : kDuplexTexts)
    {
        list.Add(LoadPageText(text).text);
    }
    if (DrvDeviceCapabilities(nullptr, context.printerName, DC_DUPLEX, nullptr, dm) == 0)
    {
        list.Select(0);
        list.Disable();
        return;
    }
    list.Select(duplex == DMDUP_SIMPLEX ? 0 : duplex == DMDUP_VERTICAL ? 1 : 2);
}

// What the printer offers; no number of pages when there is nothing to choose from, which is logged.
NupCapability NupOf(const PrivateDevMode* block, const UIContext& context)
{
    if (block == nullptr || (block->featureBitmap & kFeatureNup) == 0)
    {
        LogVerbose("%s, printer \"%S\" or client version doesn't support N-up\n", "PopulateNup", context.printerName);
        return {};
    }
    auto capability = NupCapabilities.Find(context.printerName);
    if (!capability)
    {
        LogError("%s, no Nup capabilities data for \"%S\".\n", "PopulateNup", context.printerName);
        return {};
    }
    return *std::move(capability);
}

void FillPagesPerSheet(const DropDownList& list, const std::vector<std::wstring>& numbers, uint32_t chosen)
{
    size_t selected = 0;
    for (size_t i = 0; i < numbers.size(); ++i)
    {
        list.Add(numbers[i].c_str());
        if (static_cast<uint32_t>(std::wcstol(numbers[i].c_str(), nullptr, 10)) == chosen)
        {
            selected = i; // the last one wins
        }
    }
    list.Select(selected);
}

// Returns the position that was selected.
size_t FillPageOrder(const DropDownList& list, const std::vector<std::wstring>& directions, const wchar_t* chosen)
{
    size_t selected = 0;
    for (size_t i = 0; i < directions.size(); ++i)
    {
        list.Add(KeywordText(kNupDirections, IDS_NUP_RIGHT_DOWN, directions[i]).c_str());
        if (directions[i] == chosen)
        {
            selected = i; // here, too
        }
    }
    list.Select(selected);
    return selected;
}

void PopulateNup(HWND dialog, const DEVMODEW* dm, UIContext& context)
{
    const DropDownList pages(dialog, IDC_PAGES_PER_SHEET);
    const DropDownList order(dialog, IDC_PAGE_ORDER);
    context.pagesPerSheet = 0;
    context.nupDirectionIndex = -1;
    // Enabled when they are filled: where memory runs out before that, confirming finds nothing to choose.
    for (const DropDownList& list : {pages, order})
    {
        list.Disable();
        list.Clear();
    }
    const PrivateDevMode* block = GetPrivateDevMode(dm);
    const NupCapability capability = NupOf(block, context);
    if (capability.pagesPerSheet.empty())
    {
        return;
    }
    FillPagesPerSheet(pages, capability.pagesPerSheet, block->pagesPerSheet);
    pages.Enable();
    context.pagesPerSheet = block->pagesPerSheet;
    if (capability.directions.empty())
    {
        return;
    }
    const auto chosen = block->nupLayout.Read();
    context.nupDirectionIndex = static_cast<int32_t>(FillPageOrder(order, capability.directions, chosen.text));
    order.Enable();
}

void Open(HWND dialog, const PROPSHEETPAGEW& page)
{
    UIContext& context = KeepPage(dialog, page);
    FillOrientation(dialog, context.devMode, context);
    FillDuplex(dialog, context.devMode, context);
    PopulateNup(dialog, context.devMode, context);
}

bool Command(HWND dialog, UIContext& context, WORD control, WORD notification)
{
    if (notification != CBN_SELCHANGE)
    {
        return false;
    }
    const int32_t position = DropDownList(dialog, control).Position();
    switch (control)
    {
    case IDC_ORIENTATION:
        context.orientation = position != 0 ? DMORIENT_LANDSCAPE : DMORIENT_PORTRAIT;
        ShowOrientation(dialog, position != 0);
        return true;
    case IDC_DUPLEX:
        context.duplex = position == 0 ? DMDUP_SIMPLEX : position == 1 ? DMDUP_VERTICAL : DMDUP_HORIZONTAL;
        return true;
    case IDC_PAGE_ORDER:
        context.nupDirectionIndex = position;
        return true;
    case IDC_PAGES_PER_SHEET:
        return true; // which is read when the user confirms
    default:
        return false;
    }
}

// The number of pages is read here only; where there is nothing to choose it is one.
void ReadPagesPerSheet(HWND dialog, UIContext& context)
{
    context.pagesPerSheet = 1;
    const HWND list = GetDlgItem(dialog, IDC_PAGES_PER_SHEET);
    if (list != nullptr && IsWindowEnabled(list) != FALSE)
    {
        char text[4] = {}; // three characters count
        GetWindowTextA(list, text, static_cast<int>(std::size(text)));
        context.pagesPerSheet = static_cast<uint32_t>(std::strtol(text, nullptr, 10));
    }
}

constexpr PageHandlers kPage = {"LayoutProc", &UIContext::layoutPage, Open, Command, ReadPagesPerSheet};

} // namespace

INT_PTR CALLBACK LayoutProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    return AnswerPageMessage(kPage, dialog, message, wParam, lParam);
}

} // namespace tsypr
