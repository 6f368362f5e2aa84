// The Advanced page: copies, print target, compression of pictures, printing as image.
#ifndef TESSARY_UI_ADVANCED_PAGE_H
#define TESSARY_UI_ADVANCED_PAGE_H

#include <windows.h>

namespace tsypr
{

// The page's PROPSHEETPAGEW carries the sheet's UIContext as its lParam.
INT_PTR CALLBACK AdvancedProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

} // namespace tsypr

#endif
