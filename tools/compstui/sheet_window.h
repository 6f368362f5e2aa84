// The window of a property sheet, which the common controls draw.
#ifndef TESSARY_TOOLS_COMPSTUI_SHEET_WINDOW_H
#define TESSARY_TOOLS_COMPSTUI_SHEET_WINDOW_H

#include "tools/compstui/node.h"

namespace tsypr::compstui
{

// Shows the pages until the user closes the window, which takes the pages with it; in the meantime the thread's sheet
// knows the window. The header's texts are Unicode or not. Returns what PropertySheetW returns: below zero on failure.
INT_PTR ShowSheetWindow(const PROPSHEETUI_INFO_HEADER& header,
                        bool unicode,
                        std::vector<HPROPSHEETPAGE>& pages,
                        int startIndex);

// A stand-in from the system's own icons for one of the interface's icons. Null if there is no such icon.
HICON StandardIcon(ULONG_PTR id, int width, int height) noexcept;

// A text of the process's code page as Unicode.
std::wstring Widen(const char* text);

} // namespace tsypr::compstui

#endif
