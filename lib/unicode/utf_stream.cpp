#include "lib/unicode/utf_stream.h"

#include "lib/unicode/utf_piece.h"

namespace tsypr
{

template <class From, class To>
CodeSetResult UtfStream<From, To>::Append(std::basic_string_view<From> piece, std::basic_string<To>& out) noexcept
{
    const size_t before = out.size();
    utf::Course course{m_mode, kReplacementCharacter, m_offset, m_result};
    try
    {
        // What is kept takes one unit after the other until it is a character or can no longer become one.
        while (m_keptCount != 0 && !piece.empty() && course.result.Ok())
        {
            m_kept[m_keptCount++] = piece.front();
            piece.remove_prefix(1);
            Keep({m_kept, m_keptCount}, utf::ConvertPiece<From, To>({m_kept, m_keptCount}, out, course));
        }
        if (!piece.empty() && course.result.Ok())
        {
            Keep(piece, utf::ConvertPiece(piece, out, course));
        }
    }
    catch (...)
    {
        course.result.status = CodeSetStatus::OutOfMemory;
    }
    if (!course.result.Ok())
    {
        out.resize(before);
    }
    m_offset = course.offset;
    m_result = course.result;
    return m_result;
}

template <class From, class To>
CodeSetResult UtfStream<From, To>::Finish(std::basic_string<To>& out) noexcept
{
    utf::Course course{m_mode, kReplacementCharacter, m_offset, m_result};
    try
    {
        utf::ConvertEnd(m_keptCount, out, course);
    }
    catch (...)
    {
        course.result.status = CodeSetStatus::OutOfMemory;
    }
    m_keptCount = 0;
    m_offset = 0;
    m_result = {};
    return course.result;
}

template <class From, class To>
void UtfStream<From, To>::Keep(std::basic_string_view<From> converted, size_t count) noexcept
{
    std::copy(converted.end() - static_cast<std::ptrdiff_t>(count), converted.end(), m_kept);
    m_keptCount = count;
}

template class UtfStream<char, Utf16Unit>;
template class UtfStream<char, char32_t>;
template class UtfStream<Utf16Unit, char>;
template class UtfStream<Utf16Unit, char32_t>;
template class UtfStream<char32_t, char>;
template class UtfStream<char32_t, Utf16Unit>;

} // namespace tsypr
