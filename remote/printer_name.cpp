#include "remote/printer_name.h"

#include "module/log.h"

#include <string_view>

namespace tsypr
{

void NormalizePrinterName(wchar_t (&out)[kPrinterNameChars], const wchar_t* in) noexcept
{
    const std::wstring_view name = in != nullptr ? in : L"";
    const size_t comma = name.find(L',');
    if (comma == std::wstring_view::npos)
    {
        name.copy(out, kPrinterNameChars - 1);
        LogVerbose("%s, copy the original [%S] as the normalized printer name.\n",
                   "NormalizePrinterName",
                   in != nullptr ? in : L"");
        return;
    }
    // Only the first comma counts, and only backslashes before it.
    const std::wstring_view head = name.substr(0, comma);
    const size_t start = head.rfind(L'\\') + 1; // npos + 1 is the start of the name
    head.substr(start).copy(out, kPrinterNameChars - 1);
    LogVerbose("%s, normalize printer name from [%S] to [%S].\n", "NormalizePrinterName", in, out);
}

} // namespace tsypr
