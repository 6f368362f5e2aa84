// The Layout page: orientation, printing on both sides, several pages on a sheet.
#ifndef TESSARY_UI_LAYOUT_PAGE_H
#define TESSARY_UI_LAYOUT_PAGE_H

#include <windows.h>

namespace tsypr
{

// The page's PROPSHEETPAGEW carries the sheet's UIContext as its lParam.
INT_PTR CALLBACK LayoutProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

} // namespace tsypr

#endif
