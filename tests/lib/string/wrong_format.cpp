// Must not compile: what every line passes is not what its format says.
#include "lib/string/format.h"

#include <string>

void WrongFormats(std::string& text)
{
    char buffer[20];
    tsypr::FormatFixed(buffer, sizeof(buffer), "%S", "narrow");
    tsypr::FormatString(text, "%s", L"wide");
    tsypr::FormatString(text, "%2$s %1$d", "swapped", 1);
}
