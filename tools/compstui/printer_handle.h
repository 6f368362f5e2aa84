#ifndef TESSARY_TOOLS_COMPSTUI_PRINTER_HANDLE_H
#define TESSARY_TOOLS_COMPSTUI_PRINTER_HANDLE_H

namespace tsypr::compstui
{

// Gives drivers the printer handle that Windows documents for DocumentPropertiesW: Wine's print dialogs pass none. Has
// an effect on the dialogs of programs that have loaded them by now, so it is called when this library is loaded.
void RepairPrintDialogs() noexcept;

} // namespace tsypr::compstui

#endif
