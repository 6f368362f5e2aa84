// What Wine's print dialogs lack when they open a driver's preferences.
#ifndef TESSARY_TOOLS_COMPSTUI_PRINTER_HANDLE_H
#define TESSARY_TOOLS_COMPSTUI_PRINTER_HANDLE_H

namespace tsypr::compstui
{

// Gives drivers the printer handle that Windows documents for DocumentPropertiesW: Wine's print dialogs pass none. Has
// an effect on the dialogs of programs that have loaded them by now, so it is called when this library is loaded.
void RepairPrintDialogs() noexcept;

// Takes that back, before this library is unloaded.
void LeavePrintDialogs() noexcept;

} // namespace tsypr::compstui

#endif
