// What ends a command early: a message for the user and the program's exit code.
#ifndef TESSARY_PRINTCTL_ERRORS_H
#define TESSARY_PRINTCTL_ERRORS_H

#include <windows.h>

#include <stdexcept>
#include <string>
#include <string_view>

namespace tsypr::printctl
{

enum class ExitCode : int
{
    Ok = 0,
    Usage = 1,     // unknown option, field or value
    NotFound = 2,  // no such printer, driver, language or stored device mode
    System = 3,    // a Windows call or the driver failed
    BadFile = 4,   // an input file is missing, unreadable or inconsistent
    Cancelled = 5, // by the user, in a dialog
    Internal = 10,
};

class Failure : public std::runtime_error
{
public:
    Failure(ExitCode code, const std::string& message) : std::runtime_error(message), m_code(code) {}

    ExitCode Code() const noexcept
    {
        return m_code;
    }

private:
    ExitCode m_code;
};

// The system's text for an error number with the number behind it, UTF-8, without a line end.
std::string SystemErrorText(DWORD error);

// Throws a Failure "<what> failed: <system text> (error <number>)". Take the error number before anything else runs.
[[noreturn]] void ThrowSystem(std::string_view what, DWORD error, ExitCode code = ExitCode::System);

} // namespace tsypr::printctl

#endif
