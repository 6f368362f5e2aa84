// UTF-16 and UTF-8, one code point at a time. Allocates nothing.
#ifndef TESSARY_LIB_UNICODE_UTF16_H
#define TESSARY_LIB_UNICODE_UTF16_H

#include <cstddef>
#include <cstdint>

namespace tsypr
{

#ifdef _WIN32
using Utf16Unit = wchar_t;
#else
using Utf16Unit = char16_t;
#endif

inline constexpr uint32_t kReplacementCharacter = 0xFFFD;
inline constexpr size_t kMaxUtf8Bytes = 4;

constexpr bool IsHighSurrogate(uint32_t unit) noexcept
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

constexpr bool IsLowSurrogate(uint32_t unit) noexcept
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

constexpr bool IsSurrogate(uint32_t unit) noexcept
{
    return (unit & 0xFFFFF800U) == 0xD800;
}

constexpr uint32_t JoinSurrogates(uint32_t high, uint32_t low) noexcept
{
    return (high << 10) + low - ((0xD800U << 10) + 0xDC00 - 0x10000);
}

// Takes the code point at text[0]; `next` is the unit behind it, or 0 when there is none. A lone surrogate gives
// U+FFFD. Stores in `units` how many units were taken (1 or 2).
constexpr uint32_t DecodeUtf16(uint32_t first, uint32_t next, size_t& units) noexcept
{
    units = 1;
    if (IsHighSurrogate(first) && IsLowSurrogate(next))
    {
        units = 2;
        return JoinSurrogates(first, next);
    }
    return IsSurrogate(first) ? kReplacementCharacter : first;
}

// Whether the byte of UTF-8 is one behind the first of a character.
constexpr bool IsContinuation(uint32_t byte) noexcept
{
    return (byte & 0xC0) == 0x80;
}

// Writes a code point, which may be a lone surrogate, as UTF-8 of 1 to 4 bytes; returns where the next one goes.
constexpr char* PutUtf8(uint32_t codePoint, char* to) noexcept
{
    const auto put = [to](size_t i, uint32_t byte) { to[i] = static_cast<char>(static_cast<unsigned char>(byte)); };
    if (codePoint < 0x80)
    {
        put(0, codePoint);
        return to + 1;
    }
    if (codePoint < 0x800)
    {
        put(0, 0xC0 | (codePoint >> 6));
        put(1, 0x80 | (codePoint & 0x3F));
        return to + 2;
    }
    if (codePoint < 0x10000)
    {
        put(0, 0xE0 | (codePoint >> 12));
        put(1, 0x80 | ((codePoint >> 6) & 0x3F));
        put(2, 0x80 | (codePoint & 0x3F));
        return to + 3;
    }
    put(0, 0xF0 | (codePoint >> 18));
    put(1, 0x80 | ((codePoint >> 12) & 0x3F));
    put(2, 0x80 | ((codePoint >> 6) & 0x3F));
    put(3, 0x80 | (codePoint & 0x3F));
    return to + 4;
}

// The same; returns the number of bytes.
constexpr size_t EncodeUtf8(uint32_t codePoint, char (&out)[kMaxUtf8Bytes]) noexcept
{
    return static_cast<size_t>(PutUtf8(codePoint, out) - out);
}

// The longest start of `text` of at most `length` bytes that ends between two characters. What is not UTF-8 stays.
constexpr size_t WholeCharacters(const char* text, size_t length) noexcept
{
    size_t end = length;
    size_t back = 0;
    while (end > 0 && back < kMaxUtf8Bytes && IsContinuation(static_cast<unsigned char>(text[end - 1])))
    {
        --end;
        ++back;
    }
    if (end == 0)
    {
        return length; // no lead byte in reach
    }
    const auto lead = static_cast<unsigned char>(text[end - 1]);
    const size_t need = lead >= 0xF0 ? 4 : (lead >= 0xE0 ? 3 : (lead >= 0xC0 ? 2 : 1));
    return need > back + 1 ? end - 1 : length;
}

} // namespace tsypr

#endif
