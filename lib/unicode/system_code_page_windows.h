// Windows' own conversions, of any of its "ANSI" code pages. Internal to lib/unicode; the process's page is in
// process_code_page.h.
#ifndef TESSARY_LIB_UNICODE_SYSTEM_CODE_PAGE_WINDOWS_H
#define TESSARY_LIB_UNICODE_SYSTEM_CODE_PAGE_WINDOWS_H

#include "lib/unicode/codeset.h"

namespace tsypr
{

// `page` is one of at most two bytes a character, or UTF-8.
CodeSetResult SystemPageToUtf16(unsigned page, std::string_view text, Utf16String& out, CodeSetMode mode) noexcept;
CodeSetResult Utf16ToSystemPage(unsigned page, Utf16View text, std::string& out, CodeSetMode mode) noexcept;

} // namespace tsypr

#endif
