#include "tools/printctl/errors.h"

#include "tools/printctl/text.h"

namespace tsypr::printctl
{

std::string SystemErrorText(DWORD error)
{
    const std::string number = "(error " + std::to_string(error) + ")";
    if (error == ERROR_SUCCESS)
    {
        return "no reason was given " + number;
    }
    wchar_t text[512];
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                  nullptr,
                                  error,
                                  0,
                                  text,
                                  static_cast<DWORD>(std::size(text)),
                                  nullptr);
    while (length > 0 && (text[length - 1] == L'\n' || text[length - 1] == L'\r' || text[length - 1] == L' '))
    {
        --length;
    }
    return length == 0 ? number : Utf8({text, length}) + " " + number;
}

void ThrowSystem(std::string_view what, DWORD error, ExitCode code)
{
    throw Failure(code, std::string(what) + " failed: " + SystemErrorText(error));
}

} // namespace tsypr::printctl
