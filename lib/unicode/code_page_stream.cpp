#include "lib/unicode/code_page_stream.h"

#include "lib/unicode/code_page_932.h"
#include "lib/unicode/utf_piece.h"

#include <unicode/ucnv.h>

#include <iterator>
#include <new>
#include <utility>

namespace tsypr
{
namespace
{

// The two directions of ICU's interface, made alike. Utf16Unit is another name for ICU's unit.
UErrorCode Step(
    UConverter* converter, const char*& from, const char* fromEnd, Utf16Unit*& to, Utf16Unit* toEnd, bool last)
{
    UErrorCode error = U_ZERO_ERROR;
    auto* target = reinterpret_cast<UChar*>(to);
    UChar* const begin = target;
    ucnv_toUnicode(converter, &target, reinterpret_cast<UChar*>(toEnd), &from, fromEnd, nullptr, last ? 1 : 0, &error);
    to += target - begin;
    return error;
}

UErrorCode Step(
    UConverter* converter, const Utf16Unit*& from, const Utf16Unit* fromEnd, char*& to, char* toEnd, bool last)
{
    UErrorCode error = U_ZERO_ERROR;
    const auto* source = reinterpret_cast<const UChar*>(from);
    const UChar* const begin = source;
    ucnv_fromUnicode(
        converter, &to, toEnd, &source, reinterpret_cast<const UChar*>(fromEnd), nullptr, last ? 1 : 0, &error);
    from += source - begin;
    return error;
}

// What the converter stopped at.
struct BadPart
{
    size_t unitsSince; // from the part's beginning to what is read next: the part itself, and units behind it that have
                       // been taken already and will be looked at again
    char asciiBehind;  // the letter that stood as the second of two bytes without meaning together, or NUL
};

BadPart MeasureBad(UConverter* converter, const char*)
{
    UErrorCode error = U_ZERO_ERROR;
    char bytes[32];
    int8_t length = sizeof(bytes);
    ucnv_getInvalidChars(converter, bytes, &length, &error);
    const bool letter = length == 2 && bytes[1] >= 0x20 && bytes[1] < 0x7F;
    return {static_cast<size_t>(length) + static_cast<size_t>(ucnv_toUCountPending(converter, &error)),
            letter ? bytes[1] : '\0'};
}

BadPart MeasureBad(UConverter* converter, const Utf16Unit*)
{
    UErrorCode error = U_ZERO_ERROR;
    UChar units[32];
    auto length = static_cast<int8_t>(std::size(units));
    ucnv_getInvalidUChars(converter, units, &length, &error);
    return {static_cast<size_t>(length) + static_cast<size_t>(ucnv_fromUCountPending(converter, &error)), '\0'};
}

// What the converter's error means for the text; Ok: the output is full.
CodeSetStatus StatusOf(UErrorCode error, bool decoding)
{
    switch (error)
    {
    case U_BUFFER_OVERFLOW_ERROR:
        return CodeSetStatus::Ok;
    case U_INVALID_CHAR_FOUND:
        return decoding ? CodeSetStatus::IllFormed : CodeSetStatus::Unmappable;
    case U_ILLEGAL_CHAR_FOUND:
        return CodeSetStatus::IllFormed;
    case U_TRUNCATED_CHAR_FOUND:
        return CodeSetStatus::Incomplete;
    default:
        return CodeSetStatus::OutOfMemory;
    }
}

} // namespace

template <class From, class To>
CodePageStream<From, To>::CodePageStream(unsigned page, CodeSetMode mode) noexcept
    : m_page(page), m_mode(mode), m_utf8(mode), m_converter(page)
{
    m_result.status = m_converter.Status();
}

// Throws std::bad_alloc or std::length_error.
template <class From, class To>
void CodePageStream<From, To>::ConvertAll(std::basic_string_view<From> piece, std::basic_string<To>& out, bool last)
{
    constexpr bool kDecoding = sizeof(From) == 1;
    constexpr size_t kBlock = size_t{1} << 20; // ICU counts with 32 bits
    constexpr size_t kUsual = kDecoding ? 1 : 2;
    constexpr From kNothing[1] = {};
    std::basic_string<From> room;
    if (m_page == 932)
    {
        piece = cp932::Substituted(piece, room);
    }
    const From* from = piece.empty() ? kNothing : piece.data();
    const From* const begin = from;
    const From* const end = from + piece.size();
    utf::Course course{m_mode, kDecoding ? kReplacementCharacter : uint32_t{'?'}, m_offset, m_result};
    utf::Output<To> output(out);
    UErrorCode error = U_ZERO_ERROR;
    do
    {
        const size_t block = std::min(static_cast<size_t>(end - from), kBlock);
        To* to = output.Room(block * kUsual + 8, 0);
        error = Step(m_converter.Get(), from, from + block, to, output.End(), last && from + block == end);
        const CodeSetStatus bad = U_SUCCESS(error) ? CodeSetStatus::Ok : StatusOf(error, kDecoding);
        output.Wrote(to);
        if (bad == CodeSetStatus::OutOfMemory)
        {
            throw std::bad_alloc();
        }
        if (bad != CodeSetStatus::Ok)
        {
            const BadPart part = MeasureBad(m_converter.Get(), from);
            if (!NoteBad(course, bad, m_offset + static_cast<size_t>(from - begin) - part.unitsSince))
            {
                break;
            }
            to = utf::Put(course.replacement, output.Room(2, 0));
            output.Wrote(part.asciiBehind == '\0' ? to : utf::Put(static_cast<uint32_t>(part.asciiBehind), to));
        }
    } while (from != end || U_FAILURE(error));
    m_offset += piece.size();
    m_result = course.result;
}

template <class From, class To>
void CodePageStream<From, To>::Convert(std::basic_string_view<From> piece,
                                       std::basic_string<To>& out,
                                       bool last) noexcept
{
    const size_t before = out.size();
    try
    {
        ConvertAll(piece, out, last);
    }
    catch (...)
    {
        m_result.status = CodeSetStatus::OutOfMemory;
    }
    if (!m_result.Ok())
    {
        out.resize(before);
    }
}

template <class From, class To>
CodeSetResult CodePageStream<From, To>::Append(std::basic_string_view<From> piece, std::basic_string<To>& out) noexcept
{
    if (!m_result.Ok())
    {
        return m_result;
    }
    if (m_converter.Get() == nullptr)
    {
        return m_utf8.Append(piece, out);
    }
    Convert(piece, out, false);
    return m_result;
}

template <class From, class To>
CodeSetResult CodePageStream<From, To>::Finish(std::basic_string<To>& out) noexcept
{
    return AppendLast({}, out);
}

template <class From, class To>
CodeSetResult CodePageStream<From, To>::AppendLast(std::basic_string_view<From> piece,
                                                   std::basic_string<To>& out) noexcept
{
    if (m_converter.Status() != CodeSetStatus::Ok)
    {
        return m_result;
    }
    if (m_converter.Get() == nullptr)
    {
        const size_t before = out.size();
        m_utf8.Append(piece, out);
        const CodeSetResult result = m_utf8.Finish(out);
        out.resize(result.Ok() ? out.size() : before);
        return result;
    }
    if (m_result.Ok())
    {
        Convert(piece, out, true);
    }
    ucnv_reset(m_converter.Get());
    m_offset = 0;
    return std::exchange(m_result, {});
}

template class CodePageStream<char, Utf16Unit>;
template class CodePageStream<Utf16Unit, char>;

} // namespace tsypr
