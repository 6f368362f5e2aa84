// The Finishing page: stapling and hole punching.
#ifndef TESSARY_UI_FINISHING_PAGE_H
#define TESSARY_UI_FINISHING_PAGE_H

#include <windows.h>

namespace tsypr
{

// The page's PROPSHEETPAGEW carries the sheet's UIContext as its lParam.
INT_PTR CALLBACK FinishingProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

} // namespace tsypr

#endif
