// Whole texts from one encoding into another.
#ifndef TESSARY_LIB_UNICODE_CODESET_H
#define TESSARY_LIB_UNICODE_CODESET_H

#include "lib/unicode/utf16.h"

#include <string>
#include <string_view>

namespace tsypr
{

using Utf16String = std::basic_string<Utf16Unit>;

// Converts UTF-8 into `out`. Returns false, with `out` empty, when the text is not well-formed or memory runs out.
bool CodeSet_Utf8ToUtf16(std::string_view text, Utf16String& out) noexcept;

// Converts UTF-16 into `out`; a lone surrogate becomes U+FFFD. Returns false, with `out` empty, when memory runs out.
bool CodeSet_Utf16ToUtf8(std::basic_string_view<Utf16Unit> text, std::string& out) noexcept;

} // namespace tsypr

#endif
