// What the test driver shows its test.
#ifndef TESSARY_TESTS_COMPSTUI_TEST_DRIVER_H
#define TESSARY_TESTS_COMPSTUI_TEST_DRIVER_H

#include <windows.h>

// The one line per call that the driver was asked since it was last read: the reason, the members of PROPSHEETUI_INFO
// that are not as promised, and what the page was told.
using TestDriverLogFunction = void(WINAPI*)(char* buffer, DWORD size);

// The copies that the driver's page chooses.
constexpr short kTestDriverCopies = 42;

// The driver adds no page for an application that asks for so many.
constexpr short kTestDriverRefusedCopies = 13;

#endif
