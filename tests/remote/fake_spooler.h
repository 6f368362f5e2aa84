// The spooler functions that the driver calls, by script. The program is linked so that their calls pass through here.
#ifndef TESSARY_TESTS_REMOTE_FAKE_SPOOLER_H
#define TESSARY_TESTS_REMOTE_FAKE_SPOOLER_H

#include <windows.h>

namespace tsypr::test
{

// The last error of each failing step, 0 for success.
struct SpoolerScript
{
    DWORD openError = 0;
    DWORD sizeError = ERROR_INSUFFICIENT_BUFFER; // asking for the size
    DWORD dataError = 0;                         // asking for the record
    const wchar_t* text = L"";                   // the driver or printer name in the record
    DWORD infoSize = 512;
    int stillOpen = 0;
};

// Set anew by each test that needs it.
extern SpoolerScript g_spooler;

} // namespace tsypr::test

#endif
