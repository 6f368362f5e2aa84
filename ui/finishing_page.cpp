#include "ui/finishing_page.h"

#include "language/resource_ids.h"
#include "module/log.h"
#include "ui/capability_maps.h"
#include "ui/page_controls.h"
#include "ui/page_texts.h"
#include "ui/property_page.h"

#include <string>
#include <vector>

namespace tsypr
{
namespace
{

// One of the page's two lists, which differ in nothing else.
struct FinishingList
{
    const char* function; // that fills it, for the log
    int control;
    int32_t UIContext::*index;
    WideField<kKeywordChars> PrivateDevMode::*keyword;
    std::vector<std::wstring> FinishingCapability::*keywords;
    KeywordTable names;
    UINT firstText;
};

constexpr FinishingList kStaple = {"PopulateStaple",
                                   IDC_STAPLE,
                                   &UIContext::stapleIndex,
                                   &PrivateDevMode::staple,
                                   &FinishingCapability::staples,
                                   kStaples,
                                   IDS_STAPLE_NONE};
constexpr FinishingList kPunch = {"PopulatePunch",
                                  IDC_PUNCH,
                                  &UIContext::punchIndex,
                                  &PrivateDevMode::punch,
                                  &FinishingCapability::punches,
                                  kPunches,
                                  IDS_PUNCH_NONE};

// What the printer offers; empty when there is nothing to choose from, which is logged.
std::vector<std::wstring> KeywordsOf(const FinishingList& list, const PrivateDevMode* block, const UIContext& context)
{
    if (block == nullptr || (block->featureBitmap & kFeatureFinishing) == 0)
    {
        LogVerbose(
            "%s, printer \"%S\" or client version doesn't support finishing\n", list.function, context.printerName);
        return {};
    }
    const auto capability = FinishingCapabilities.Find(context.printerName);
    if (!capability)
    {
        LogError("%s, no Finishing capabilities data for \"%S\".\n", list.function, context.printerName);
        return {};
    }
    return (*capability).*list.keywords;
}

void Populate(const FinishingList& list, HWND dialog, const DEVMODEW* dm, UIContext& context)
{
    const DropDownList control(dialog, list.control);
    context.*list.index = -1;
    control.Enable();
    control.Clear();
    const PrivateDevMode* block = GetPrivateDevMode(dm);
    const std::vector<std::wstring> keywords = KeywordsOf(list, block, context);
    if (keywords.empty())
    {
        control.Disable();
        return;
    }
    const auto chosen = (block->*list.keyword).Read();
    size_t selected = 0;
    for (size_t i = 0; i < keywords.size(); ++i)
    {
        control.Add(KeywordText(list.names, list.firstText, keywords[i]).c_str());
        if (keywords[i] == chosen.text)
        {
            selected = i; // the last of equal keywords wins here
        }
    }
    control.Select(selected);
    context.*list.index = static_cast<int32_t>(selected);
}

void Open(HWND dialog, const PROPSHEETPAGEW& page)
{
    UIContext& context = KeepPage(dialog, page);
    Populate(kStaple, dialog, context.devMode, context);
    Populate(kPunch, dialog, context.devMode, context);
}

bool Command(HWND dialog, UIContext& context, WORD control, WORD notification)
{
    for (const FinishingList* list : {&kStaple, &kPunch})
    {
        if (control == list->control && notification == CBN_SELCHANGE)
        {
            context.*list->index = DropDownList(dialog, control).Position();
            return true;
        }
    }
    return false;
}

constexpr PageHandlers kPage = {"FinishingProc", &UIContext::finishingPage, Open, Command, nullptr};

} // namespace

INT_PTR CALLBACK FinishingProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    return AnswerPageMessage(kPage, dialog, message, wParam, lParam);
}

} // namespace tsypr
