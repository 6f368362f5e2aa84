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

// Takes the code point at text[0]; `next` is the unit behind it, or 0 when there is none. A lone surrogate gives
// U+FFFD. Stores in `units` how many units were taken (1 or 2).
constexpr uint32_t DecodeUtf16(uint32_t first, uint32_t next, size_t& units) noexcept
{
    units = 1;
    if (IsHighSurrogate(first) && IsLowSurrogate(next))
    {
        units = 2;
        return 0x10000 + ((first - 0xD800) << 10) + (next - 0xDC00);
    }
    return IsHighSurrogate(first) || IsLowSurrogate(first) ? kReplacementCharacter : first;
}

// Writes a code point as UTF-8; returns the number of bytes, 1 to 4.
constexpr size_t EncodeUtf8(uint32_t codePoint, char (&out)[kMaxUtf8Bytes]) noexcept
{
    if (codePoint < 0x80)
    {
        out[0] = static_cast<char>(codePoint);
        return 1;
    }
    if (codePoint < 0x800)
    {
        out[0] = static_cast<char>(0xC0 | (codePoint >> 6));
        out[1] = static_cast<char>(0x80 | (codePoint & 0x3F));
        return 2;
    }
    if (codePoint < 0x10000)
    {
        out[0] = static_cast<char>(0xE0 | (codePoint >> 12));
        out[1] = static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        out[2] = static_cast<char>(0x80 | (codePoint & 0x3F));
        return 3;
    }
    out[0] = static_cast<char>(0xF0 | (codePoint >> 18));
    out[1] = static_cast<char>(0x80 | ((codePoint >> 12) & 0x3F));
    out[2] = static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
    out[3] = static_cast<char>(0x80 | (codePoint & 0x3F));
    return 4;
}

} // namespace tsypr

#endif
