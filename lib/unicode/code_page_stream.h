// Texts in code pages that come in pieces, wherever these are cut.
#ifndef TESSARY_LIB_UNICODE_CODE_PAGE_STREAM_H
#define TESSARY_LIB_UNICODE_CODE_PAGE_STREAM_H

#include "lib/unicode/code_page.h"
#include "lib/unicode/code_page_pool.h"
#include "lib/unicode/utf_stream.h"

namespace tsypr
{

// Used by the two names below. All pieces together give what code_page.h gives for the whole text. An unknown page
// shows in the results.
template <class From, class To>
class CodePageStream
{
public:
    CodePageStream(unsigned page, CodeSetMode mode) noexcept;

    // As UtfStream::Append: puts what the piece became behind `out`, keeps the start of a character for the next one,
    // and tells of all pieces so far. After a failure `out` is as it was, and every further call fails alike.
    CodeSetResult Append(std::basic_string_view<From> piece, std::basic_string<To>& out) noexcept;

    // Ends the text, with Incomplete or a replacement for a start that is left over. Ready for another text then.
    CodeSetResult Finish(std::basic_string<To>& out) noexcept;

    // Append and Finish at once.
    CodeSetResult AppendLast(std::basic_string_view<From> piece, std::basic_string<To>& out) noexcept;

private:
    void Convert(std::basic_string_view<From> piece, std::basic_string<To>& out, bool last) noexcept;
    void ConvertAll(std::basic_string_view<From> piece, std::basic_string<To>& out, bool last);

    unsigned m_page;
    CodeSetMode m_mode;
    UtfStream<From, To> m_utf8; // used for UTF-8 alone
    PooledConverter m_converter;
    size_t m_offset = 0;
    CodeSetResult m_result{};
};

extern template class CodePageStream<char, Utf16Unit>;
extern template class CodePageStream<Utf16Unit, char>;

using CodePageDecoder = CodePageStream<char, Utf16Unit>; // a code page's bytes into UTF-16
using CodePageEncoder = CodePageStream<Utf16Unit, char>; // UTF-16 into a code page's bytes

} // namespace tsypr

#endif
