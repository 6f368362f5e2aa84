// One piece of a text between UTF-8, UTF-16 and UTF-32, with what is not well-formed. Internal to lib/unicode.
#ifndef TESSARY_LIB_UNICODE_UTF_PIECE_H
#define TESSARY_LIB_UNICODE_UTF_PIECE_H

#include "lib/unicode/codeset_result.h"
#include "lib/unicode/utf_scan.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace tsypr::utf
{

// A text on its way: what is known of it so far. The offset of its next unit is `offset`.
struct Course
{
    CodeSetMode mode = CodeSetMode::Strict;
    uint32_t replacement = kReplacementCharacter;
    size_t offset = 0;
    CodeSetResult result{};
};

// Notes a bad part at `offset`. Returns whether the conversion goes on, with a replacement in the part's place.
inline bool NoteBad(Course& course, CodeSetStatus why, size_t offset) noexcept
{
    if (course.result.firstBadOffset == kNoOffset)
    {
        course.result.firstBadOffset = offset;
    }
    if (course.mode == CodeSetMode::Strict)
    {
        course.result.status = why;
        return false;
    }
    ++course.result.replacements;
    return true;
}

// Output that grows: nobody knows beforehand how long a text becomes, and the longest that it can become may be four
// times what it usually does.
template <class To>
class Output
{
public:
    explicit Output(std::basic_string<To>& text) : m_text(text), m_used(text.size()) {}
    ~Output()
    {
        m_text.resize(m_used); // never longer than it is
    }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    // Room for `units` now; `later` is how many more there will be at most.
    To* Room(size_t units, size_t later)
    {
        if (m_text.size() - m_used < units)
        {
            m_text.resize(m_used + units + later);
        }
        return m_text.data() + m_used;
    }
    // Where the room ends; it may be more than was asked for.
    To* End() noexcept
    {
        return m_text.data() + m_text.size();
    }
    void Wrote(const To* end) noexcept
    {
        m_used = static_cast<size_t>(end - m_text.data());
    }

private:
    std::basic_string<To>& m_text;
    size_t m_used;
};

// Converts a piece and puts it behind `out`. Returns how many units at its end are the start of a character that goes
// on in the next piece; they are not converted. Throws std::bad_alloc or std::length_error.
template <class From, class To>
size_t ConvertPiece(std::basic_string_view<From> piece, std::basic_string<To>& out, Course& course)
{
    constexpr size_t kMost = kMostUnits<From, To>;
    constexpr size_t kBlock = kMost == 1 ? SIZE_MAX : 1024;
    const From* from = piece.data();
    const From* const end = from + piece.size();
    const size_t begin = course.offset;
    Output<To> output(out);
    Halt halt{Stop::End, 0};
    size_t spare =
        1; // at first no more room than a text of ASCII needs; if that was not enough, all that can be needed
    while (from != end)
    {
        const auto left = static_cast<size_t>(end - from);
        const size_t block = std::min(left, kBlock);
        To* to = output.Room(block * kMost, (left - block) * spare);
        spare = kMost;
        halt = Scan(from, from + block, to);
        const size_t bad = begin + static_cast<size_t>(from - piece.data());
        if (halt.stop == Stop::IllFormed && NoteBad(course, CodeSetStatus::IllFormed, bad))
        {
            to = Put(course.replacement, to);
            from += halt.length;
            halt.stop = Stop::End;
        }
        output.Wrote(to);
        if (halt.stop == Stop::IllFormed || (halt.stop == Stop::Cut && block == left))
        {
            break;
        }
    }
    course.offset = begin + static_cast<size_t>(from - piece.data());
    return halt.stop == Stop::Cut ? halt.length : 0;
}

// Ends a text of which `cut` units were left over.
template <class To>
void ConvertEnd(size_t cut, std::basic_string<To>& out, Course& course)
{
    if (cut != 0 && course.result.Ok() && NoteBad(course, CodeSetStatus::Incomplete, course.offset))
    {
        Output<To> output(out);
        output.Wrote(Put(course.replacement, output.Room(kMaxUtf8Bytes, 0)));
    }
}

// The result of a whole text: a failure leaves no output.
template <class To>
CodeSetResult Finished(CodeSetResult result, std::basic_string<To>& out) noexcept
{
    if (!result.Ok())
    {
        result.replacements = 0;
        out.clear();
    }
    return result;
}

// A whole text; `out` holds nothing but it afterwards, and nothing after a failure.
template <class From, class To>
CodeSetResult ConvertText(std::basic_string_view<From> text, std::basic_string<To>& out, Course course) noexcept
{
    out.clear();
    try
    {
        ConvertEnd(ConvertPiece(text, out, course), out, course);
    }
    catch (...)
    {
        course.result.status = CodeSetStatus::OutOfMemory;
    }
    return Finished(course.result, out);
}

} // namespace tsypr::utf

#endif
