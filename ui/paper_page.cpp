#include "ui/paper_page.h"

#include "language/resource_ids.h"
#include "module/log.h"
#include "remote/capability_list.h"
#include "ui/page_controls.h"
#include "ui/paper_lists.h"
#include "ui/property_page.h"

#include <cstdint>
#include <iterator>
#include <optional>

namespace tsypr
{
namespace
{

// A list of the printer that gives a position its value.
struct ValueList
{
    uint16_t capability;
    const char* name;
    const char* function; // that reads it, for the log
};

constexpr ValueList kPapers = {DC_PAPERS, "DC_PAPERS", "GetPaperSizeByIndex"};
constexpr ValueList kBins = {DC_BINS, "DC_BINS", "GetPaperSourceByIndex"};
constexpr ValueList kMediaTypes = {DC_MEDIATYPES, "DC_MEDIATYPES", "GetMediaTypeByIndex"};
constexpr ValueList kResolutions = {DC_ENUMRESOLUTIONS, "DC_ENUMRESOLUTIONS", "GetDPIByIndex"};

// Asks the printer once more. Empty when it does not answer, which is logged, or has no such position any more.
template <typename Value>
std::optional<Value> ValueAt(const ValueList& list, size_t position, const UIContext& context) noexcept
{
    const CapabilityList values(context.printerName, list.capability, context.devMode, sizeof(Value));
    if (!values.Read())
    {
        LogError("%s, failed to retrieve capabilities for %s.\n", list.function, list.name);
    }
    return position < values.Count() ? std::optional(values.At<Value>(position)) : std::nullopt;
}

void GetPaperSizeByIndex(HWND dialog, size_t position, UIContext& context) noexcept
{
    context.paperSize = ValueAt<int16_t>(kPapers, position, context).value_or(context.paperSize);
    // The name is taken over even if the number could not be had.
    GetDlgItemTextW(dialog, IDC_PAPER_SIZE, context.formName, static_cast<int>(std::size(context.formName)));
    context.formName[std::size(context.formName) - 1] = L'\0';
}

void GetPaperSourceByIndex(size_t position, UIContext& context) noexcept
{
    context.paperSource = ValueAt<int16_t>(kBins, position, context).value_or(context.paperSource);
}

void GetMediaTypeByIndex(size_t position, UIContext& context) noexcept
{
    context.mediaType = ValueAt<uint32_t>(kMediaTypes, position, context).value_or(context.mediaType);
}

void GetDPIByIndex(size_t position, UIContext& context) noexcept
{
    if (HoldsQualityLevel(context.devMode))
    {
        context.printQuality = -static_cast<int32_t>(position) - 1;
        return;
    }
    if (const auto resolution = ValueAt<Resolution>(kResolutions, position, context))
    {
        context.printQuality = resolution->x;
        context.yResolution = resolution->y;
    }
}

void Open(HWND dialog, const PROPSHEETPAGEW& page)
{
    UIContext& context = KeepPage(dialog, page);
    PopulatePaperSource(dialog, context.devMode, context);
    PopulatePapers(dialog, context.devMode, context);
    PopulateMediaTypes(dialog, context.devMode, context);
    PopulateColors(dialog, context.devMode, context);
    PopulateDPIs(dialog, context.devMode, context);
}

bool Command(HWND dialog, UIContext& context, WORD control, WORD notification)
{
    if (notification != CBN_SELCHANGE)
    {
        return false;
    }
    const int32_t selected = DropDownList(dialog, control).Position();
    if (control == IDC_COLOR)
    {
        context.color = selected != 0 ? DMCOLOR_COLOR : DMCOLOR_MONOCHROME;
        return true;
    }
    if (selected < 0)
    {
        return false; // no position of the printer's list
    }
    const auto position = static_cast<size_t>(selected);
    switch (control)
    {
    case IDC_PAPER_SIZE:
        GetPaperSizeByIndex(dialog, position, context);
        return true;
    case IDC_MEDIACOMBO:
        GetMediaTypeByIndex(position, context);
        return true;
    case IDC_PAPER_SOURCE:
        GetPaperSourceByIndex(position, context);
        return true;
    case IDC_PRINT_QUALITY:
        GetDPIByIndex(position, context);
        return true;
    default:
        return false;
    }
}

constexpr PageHandlers kPage = {"PaperProc", &UIContext::paperPage, Open, Command, nullptr};

} // namespace

INT_PTR CALLBACK PaperProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    return AnswerPageMessage(kPage, dialog, message, wParam, lParam);
}

} // namespace tsypr
