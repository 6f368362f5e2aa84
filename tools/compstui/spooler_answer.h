// What Wine's printing functions need so that applications get the answers that Windows gives.
#ifndef TESSARY_TOOLS_COMPSTUI_SPOOLER_ANSWER_H
#define TESSARY_TOOLS_COMPSTUI_SPOOLER_ANSWER_H

#include "tools/compstui/node.h"

namespace tsypr::compstui
{

// Whether a call of CommonPropertySheetUI comes from Wine's DocumentProperties. That function asks for no result, does
// not keep the one that the driver reports, and returns to its application what CommonPropertySheetUI returns.
bool IsWineSpooler(PFNPROPSHEETUI function, const DWORD* result) noexcept;

// So it has to be given what DocumentProperties returns on Windows: IDOK or IDCANCEL by the result that was reported,
// below zero when there was no property sheet. The first argument is what CommonPropertySheetUI returns otherwise.
LONG DocumentPropertiesAnswer(LONG answer, bool shown, LRESULT reported) noexcept;

} // namespace tsypr::compstui

#endif
