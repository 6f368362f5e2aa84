// The spooler functions that the driver calls, by script. The program is linked so that their calls pass through here.
#ifndef TESSARY_TESTS_REMOTE_FAKE_SPOOLER_H
#define TESSARY_TESTS_REMOTE_FAKE_SPOOLER_H

#include <windows.h>

namespace tsypr::test
{

// Answers instead of the system while it lives; without one the system's own functions are called.
class FakeSpooler
{
public:
    FakeSpooler();
    FakeSpooler(const FakeSpooler&) = delete;
    FakeSpooler& operator=(const FakeSpooler&) = delete;
    ~FakeSpooler();

    // The script: the last error of each failing step, 0 for success.
    DWORD openError = 0;
    DWORD sizeError = ERROR_INSUFFICIENT_BUFFER; // asking for the size
    DWORD dataError = 0;                         // asking for the record
    const wchar_t* text = L"";                   // the driver or printer name in the record
    DWORD infoSize = 512;

    int opened = 0;
    int closed = 0;
};

} // namespace tsypr::test

#endif
