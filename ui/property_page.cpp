#include "ui/property_page.h"

#include "module/log.h"
#include "ui/page_controls.h"

namespace tsypr
{
namespace
{

// Null until the page was kept: controls notify their dialog while they are made.
UIContext* FindContext(HWND dialog) noexcept
{
    const auto* page = reinterpret_cast<const PROPSHEETPAGEW*>(GetWindowLongPtrW(dialog, DWLP_USER));
    return page != nullptr ? &ContextOf(*page) : nullptr;
}

// The context goes into the device mode when the sheet's owner is told the result.
void Apply(const PageHandlers& page, HWND dialog, UIContext& context)
{
    if (page.apply != nullptr && !context.isReadOnly)
    {
        page.apply(dialog, context);
    }
    context.comPropSheet(
        context.comPropSheetHandle, CPSFUNC_SET_RESULT, reinterpret_cast<LPARAM>(context.*page.handle), CPSUI_OK);
}

void DisableIfReadOnly(HWND dialog, const PROPSHEETPAGEW& page) noexcept
{
    if (ContextOf(page).isReadOnly)
    {
        DisableControls(dialog);
    }
}

// A sheet that has an Apply button enables it when a page has changed.
void Command(const PageHandlers& page, HWND dialog, UIContext& context, WPARAM wParam)
{
    if (page.command(dialog, context, LOWORD(wParam), HIWORD(wParam)))
    {
        SendMessageW(GetParent(dialog), PSM_CHANGED, reinterpret_cast<WPARAM>(dialog), 0);
    }
}

INT_PTR AnswerNotification(const PageHandlers& page, HWND dialog, const NMHDR& header)
{
    switch (header.code)
    {
    case PSN_APPLY:
        if (UIContext* context = FindContext(dialog))
        {
            Apply(page, dialog, *context);
        }
        return TRUE;
    case PSN_RESET:
    case PSN_SETACTIVE:
        return TRUE;
    default:
        return FALSE;
    }
}

INT_PTR Answer(const PageHandlers& page, HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_INITDIALOG:
        page.open(dialog, *reinterpret_cast<const PROPSHEETPAGEW*>(lParam));
        DisableIfReadOnly(dialog, *reinterpret_cast<const PROPSHEETPAGEW*>(lParam));
        return TRUE;
    case WM_COMMAND:
        if (UIContext* context = FindContext(dialog))
        {
            Command(page, dialog, *context, wParam);
        }
        return TRUE;
    case WM_NOTIFY:
        return AnswerNotification(page, dialog, *reinterpret_cast<const NMHDR*>(lParam));
    case WM_DESTROY:
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace

UIContext& ContextOf(const PROPSHEETPAGEW& page) noexcept
{
    return *reinterpret_cast<UIContext*>(page.lParam);
}

UIContext& KeepPage(HWND dialog, const PROPSHEETPAGEW& page) noexcept
{
    SetWindowLongPtrW(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(&page));
    return ContextOf(page);
}

INT_PTR AnswerPageMessage(const PageHandlers& page, HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    try
    {
        return Answer(page, dialog, message, wParam, lParam);
    }
    catch (...)
    {
        LogError("%s, there is not enough memory for message 0x%x.\n", page.procedure, message);
        return TRUE;
    }
}

} // namespace tsypr
