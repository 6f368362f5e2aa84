// Whole texts between UTF-8, UTF-16 and UTF-32. Code pages: code_page.h. Texts that come in pieces: utf_stream.h and
// code_page_stream.h.
//
// For all functions: an empty text, also one without an address, gives an empty output. NUL is a character like any
// other. The text must not lie in `out`. What `out` held before is lost; after a failure it is empty.
#ifndef TESSARY_LIB_UNICODE_CODESET_H
#define TESSARY_LIB_UNICODE_CODESET_H

#include "lib/unicode/codeset_result.h"
#include "lib/unicode/utf16.h"

#include <string>
#include <string_view>

namespace tsypr
{

using Utf16String = std::basic_string<Utf16Unit>;
using Utf16View = std::basic_string_view<Utf16Unit>;

// Whether the text is well-formed UTF-8. Allocates nothing.
bool CodeSet_IsUtf8(std::string_view text) noexcept;

// Converts UTF-8 into `out`. Returns false, with `out` empty, when the text is not well-formed or memory runs out.
bool CodeSet_Utf8ToUtf16(std::string_view text, Utf16String& out) noexcept;

// Converts UTF-16 into `out`; a lone surrogate becomes U+FFFD. Returns false, with `out` empty, when memory runs out.
bool CodeSet_Utf16ToUtf8(Utf16View text, std::string& out) noexcept;

// All directions, strict or lenient. Not well-formed are
// - UTF-8: what the Unicode Standard's table of well-formed byte sequences does not list. In the lenient mode every
//   maximal subpart (the longest start of a character that could still have become one, or else one byte) becomes one
//   U+FFFD, as web browsers do it;
// - UTF-16: a surrogate without its partner;
// - UTF-32: surrogates and what lies beyond U+10FFFF.
CodeSetResult CodeSet_Utf8ToUtf16(std::string_view text, Utf16String& out, CodeSetMode mode) noexcept;
CodeSetResult CodeSet_Utf8ToUtf32(std::string_view text, std::u32string& out, CodeSetMode mode) noexcept;
CodeSetResult CodeSet_Utf16ToUtf8(Utf16View text, std::string& out, CodeSetMode mode) noexcept;
CodeSetResult CodeSet_Utf16ToUtf32(Utf16View text, std::u32string& out, CodeSetMode mode) noexcept;
CodeSetResult CodeSet_Utf32ToUtf8(std::u32string_view text, std::string& out, CodeSetMode mode) noexcept;
CodeSetResult CodeSet_Utf32ToUtf16(std::u32string_view text, Utf16String& out, CodeSetMode mode) noexcept;

} // namespace tsypr

#endif
