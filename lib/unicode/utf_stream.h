// Texts between UTF-8, UTF-16 and UTF-32 that come in pieces, wherever these are cut.
#ifndef TESSARY_LIB_UNICODE_UTF_STREAM_H
#define TESSARY_LIB_UNICODE_UTF_STREAM_H

#include "lib/unicode/codeset.h"

namespace tsypr
{

// From and To are two different ones of char, Utf16Unit and char32_t. All pieces together give what codeset.h gives for
// the whole text. Allocates nothing but the output.
template <class From, class To>
class UtfStream
{
public:
    explicit UtfStream(CodeSetMode mode) noexcept : m_mode(mode) {}

    // Converts a piece, which may be empty, and puts the result behind `out`. The start of a character at the piece's
    // end is kept for the next one. The result tells of all pieces so far; its offset counts from the first piece's
    // beginning. After a failure `out` is as it was, and every further call fails alike.
    CodeSetResult Append(std::basic_string_view<From> piece, std::basic_string<To>& out) noexcept;

    // Ends the text: the start of a character that is left over is reported as Incomplete, or replaced. Returns the
    // result for the whole text. The object is ready for another text then.
    CodeSetResult Finish(std::basic_string<To>& out) noexcept;

private:
    // Keeps the last `count` units of what was converted.
    void Keep(std::basic_string_view<From> converted, size_t count) noexcept;

    CodeSetMode m_mode;
    From m_kept[4 / sizeof(From) + 1] = {}; // the start of a character
    size_t m_keptCount = 0;
    size_t m_offset = 0; // of what comes next, or of what is kept
    CodeSetResult m_result{};
};

extern template class UtfStream<char, Utf16Unit>;
extern template class UtfStream<char, char32_t>;
extern template class UtfStream<Utf16Unit, char>;
extern template class UtfStream<Utf16Unit, char32_t>;
extern template class UtfStream<char32_t, char>;
extern template class UtfStream<char32_t, Utf16Unit>;

} // namespace tsypr

#endif
