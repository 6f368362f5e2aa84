// The Paper/Quality page: paper source, size and type, colour and print quality.
#ifndef TESSARY_UI_PAPER_PAGE_H
#define TESSARY_UI_PAPER_PAGE_H

#include <windows.h>

namespace tsypr
{

// The page's PROPSHEETPAGEW carries the sheet's UIContext as its lParam.
INT_PTR CALLBACK PaperProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

} // namespace tsypr

#endif
