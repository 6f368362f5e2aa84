// What the dialog procedures of all pages have in common.
#ifndef TESSARY_UI_PROPERTY_PAGE_H
#define TESSARY_UI_PROPERTY_PAGE_H

#include "ui/ui_context.h"

namespace tsypr
{

// How a page answers its messages.
struct PageHandlers
{
    const char* procedure; // name for the log
    HANDLE UIContext::*handle;
    // WM_INITDIALOG; calls KeepPage.
    void (*open)(HWND dialog, const PROPSHEETPAGEW& page);
    // WM_COMMAND; returns whether the user changed a setting.
    bool (*command)(HWND dialog, UIContext& context, WORD control, WORD notification);
    // Reads what is not in the context yet when the user confirms; null when there is nothing.
    void (*apply)(HWND dialog, UIContext& context);
};

// The context that came with the page.
UIContext& ContextOf(const PROPSHEETPAGEW& page) noexcept;

// Remembers the page's record with the dialog, for all later messages, and returns the context.
UIContext& KeepPage(HWND dialog, const PROPSHEETPAGEW& page) noexcept;

// The body of a dialog procedure. Nothing thrown leaves it.
INT_PTR AnswerPageMessage(const PageHandlers& page, HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

} // namespace tsypr

#endif
