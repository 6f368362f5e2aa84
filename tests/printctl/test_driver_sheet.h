#ifndef TESSARY_TESTS_PRINTCTL_TEST_DRIVER_SHEET_H
#define TESSARY_TESTS_PRINTCTL_TEST_DRIVER_SHEET_H

#include <windows.h>

#include <compstui.h>

// What the driver answers to the property sheet interface; `out` receives the settings.
LONG AnswerSheet(PROPSHEETUI_INFO& info, DEVMODEW* out);

#endif
