// Texts in the process's own code page: under Windows the one of the "ANSI" functions, elsewhere the locale's character
// set as far as setlocale has been called (UTF-8 when it is C, POSIX or not one of code_page.h).
//
// Under Windows the system's own functions convert, so that these may be called in DllMain, and nothing stays
// allocated. Their tables may give other characters than code_page.h in a few places; see docs/unicode.md. Similar
// characters are not used there either.
#ifndef TESSARY_LIB_UNICODE_PROCESS_CODE_PAGE_H
#define TESSARY_LIB_UNICODE_PROCESS_CODE_PAGE_H

#include "lib/unicode/codeset.h"

namespace tsypr
{

// The Windows number of the process's code page; 65001 is UTF-8.
unsigned CodeSet_ProcessPage() noexcept;

// Whole texts, as in code_page.h. TooLong: under Windows, text of 2^30 units or more.
CodeSetResult CodeSet_ProcessToUtf16(std::string_view text, Utf16String& out, CodeSetMode mode) noexcept;
CodeSetResult CodeSet_ProcessToUtf8(std::string_view text, std::string& out, CodeSetMode mode) noexcept;
CodeSetResult CodeSet_Utf16ToProcess(Utf16View text, std::string& out, CodeSetMode mode) noexcept;
CodeSetResult CodeSet_Utf8ToProcess(std::string_view text, std::string& out, CodeSetMode mode) noexcept;

} // namespace tsypr

#endif
