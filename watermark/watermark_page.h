// The watermark page of the printing preferences.
#ifndef TESSARY_WATERMARK_WATERMARK_PAGE_H
#define TESSARY_WATERMARK_WATERMARK_PAGE_H

#include "ui/ui_context.h"

#include <windows.h>

namespace tsypr
{

// The page's dialog procedure. WM_INITDIALOG comes with the page's PROPSHEETPAGE, whose lParam is the UIContext; both
// live as long as the page. The device mode is read when the page is made; from then on only the context is edited.
INT_PTR CALLBACK WatermarkProc(HWND page, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

} // namespace tsypr

#endif
