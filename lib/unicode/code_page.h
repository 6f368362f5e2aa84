// Texts in the code pages of the driver's languages: 1252 (Western European), 932 (Japanese), 936 (simplified Chinese),
// 949 (Korean), 950 (traditional Chinese), 54936 (GB18030), and 65001, which is UTF-8. The tables are ICU's.
//
// Nothing is lost silently: no character is taken for a similar one, and no byte is skipped. In the lenient mode a bad
// part of the source becomes U+FFFD, and what the code page does not have becomes "?".
#ifndef TESSARY_LIB_UNICODE_CODE_PAGE_H
#define TESSARY_LIB_UNICODE_CODE_PAGE_H

#include "lib/unicode/codeset.h"

namespace tsypr
{

inline constexpr unsigned kCodePageUtf8 = 65001;

// The Windows number of a code page that goes by this name in mails, web pages or printer descriptions: "windows-1252",
// "Shift_JIS", "GBK", "EUC-KR", "ks_c_5601-1987", "Big5", "GB18030", "UTF-8", "cp932" and the like. Upper and lower
// case, "-", "_", ":" and blanks make no difference. Returns 0 for any other name. ISO-8859-1 and ASCII are other
// names: they are not 1252.
unsigned CodeSet_PageByName(std::string_view name) noexcept;

// The usual name, such as "shift_jis" for 932; nullptr for a page that is not listed above.
const char* CodeSet_PageName(unsigned page) noexcept;

// Whole texts. As in codeset.h: an empty text gives an empty output, the text must not lie in `out`, and after a
// failure `out` is empty. UnknownCodePage: `page` is not listed above. The first conversions of a page take memory that
// stays until CodeSetRelease. Safe on several threads. Not for DllMain: see process_code_page.h.
CodeSetResult CodeSet_PageToUtf16(unsigned page, std::string_view text, Utf16String& out, CodeSetMode mode) noexcept;
CodeSetResult CodeSet_PageToUtf8(unsigned page, std::string_view text, std::string& out, CodeSetMode mode) noexcept;
CodeSetResult CodeSet_Utf16ToPage(unsigned page, Utf16View text, std::string& out, CodeSetMode mode) noexcept;
CodeSetResult CodeSet_Utf8ToPage(unsigned page, std::string_view text, std::string& out, CodeSetMode mode) noexcept;

// Gives back all memory that code pages took. For a library that converts code pages and is unloaded while its process
// lives on: call it once, when no other thread converts any more and no stream of code_page_stream.h is left, before
// the unloading (an export or the last release; in DllMain only at a detach that is not the end of the process). Later
// conversions work again. Programs need not call it.
void CodeSetRelease() noexcept;

} // namespace tsypr

#endif
