// The inner loops of the conversions between UTF-8, UTF-16 and UTF-32: from well-formed text to well-formed text, up to
// the first place that is not. Internal to lib/unicode.
#ifndef TESSARY_LIB_UNICODE_UTF_SCAN_H
#define TESSARY_LIB_UNICODE_UTF_SCAN_H

#include "lib/unicode/utf16.h"

#include <bit>
#include <cstring>

namespace tsypr::utf
{

// Why a scan stopped.
enum class Stop
{
    End,       // the text is through
    IllFormed, // `length` units at the scan's position are no character
    Cut        // the last `length` units are the start of a character that goes on behind the text
};

struct Halt
{
    Stop stop;
    size_t length;
};

// The most units of To that one unit of From can become.
template <class From, class To>
inline constexpr size_t kMostUnits = sizeof(To) == 1 ? (sizeof(From) == 2 ? 3 : 4)
                                                     : (sizeof(To) == 2 && sizeof(From) == 4 ? 2 : 1);

// Writes a code point, which may be a lone surrogate; returns where the next one goes.
template <class To>
inline To* Put(uint32_t codePoint, To* to) noexcept
{
    if constexpr (sizeof(To) == 1)
    {
        return PutUtf8(codePoint, to);
    }
    else if (sizeof(To) == 4 || codePoint < 0x10000)
    {
        to[0] = static_cast<To>(codePoint);
        return to + 1;
    }
    else
    {
        to[0] = static_cast<To>(0xD7C0 + (codePoint >> 10));
        to[1] = static_cast<To>(0xDC00 + (codePoint & 0x3FF));
        return to + 2;
    }
}

// How many units at the beginning of a machine word are ASCII.
template <class From>
inline size_t CountAscii(uint64_t word) noexcept
{
    constexpr uint64_t kNotAscii = sizeof(From) == 1 ? 0x8080808080808080U : 0xFF80FF80FF80FF80U;
    constexpr bool kLittle = std::endian::native == std::endian::little;
    word &= kNotAscii;
    return static_cast<size_t>(kLittle ? std::countr_zero(word) : std::countl_zero(word)) / (8 * sizeof(From));
}

// Copies ASCII as long as it goes.
template <class From, class To>
inline void CopyAscii(const From*& from, const From* end, To*& to) noexcept
{
    // Sixteen at a time, through arrays of our own: the compiler knows that they do not overlap and uses wide
    // registers. All sixteen are copied and then counted: that what is not ASCII will be written over costs less than
    // branches.
    constexpr size_t kStep = 16;
    constexpr size_t kPerWord = sizeof(uint64_t) / sizeof(From);
    while (static_cast<size_t>(end - from) >= kStep)
    {
        From units[kStep];
        uint64_t words[kStep / kPerWord];
        To copies[kStep];
        std::memcpy(units, from, sizeof(units));
        std::memcpy(words, from, sizeof(words));
        for (size_t i = 0; i < kStep; ++i)
        {
            copies[i] = static_cast<To>(units[i]);
        }
        std::memcpy(to, copies, sizeof(copies));
        size_t count = 0;
        for (const uint64_t word : words)
        {
            const size_t more = CountAscii<From>(word);
            count += more;
            if (more < kPerWord)
            {
                break;
            }
        }
        from += count;
        to += count;
        if (count < kStep)
        {
            return;
        }
    }
    while (from != end && (static_cast<uint32_t>(*from) & ~0x7FU) == 0)
    {
        *to++ = static_cast<To>(*from++);
    }
}

// Bytes at `from` that are no character: the maximal subpart.
inline Halt MeasureBadUtf8(const char* from, const char* end) noexcept
{
    const uint32_t lead = static_cast<unsigned char>(*from);
    if (lead < 0xC2 || lead > 0xF4)
    {
        return {Stop::IllFormed, 1};
    }
    // Some leads allow only a part of the continuation bytes behind them.
    uint32_t lowest = lead == 0xE0 ? 0xA0 : (lead == 0xF0 ? 0x90 : 0x80);
    uint32_t highest = lead == 0xED ? 0x9F : (lead == 0xF4 ? 0x8F : 0xBF);
    const size_t more = lead < 0xE0 ? 1 : (lead < 0xF0 ? 2 : 3);
    for (size_t i = 1; i <= more; ++i)
    {
        if (from + i == end)
        {
            return {Stop::Cut, i};
        }
        const uint32_t byte = static_cast<unsigned char>(from[i]);
        if (byte < lowest || byte > highest)
        {
            return {Stop::IllFormed, i};
        }
        lowest = 0x80;
        highest = 0xBF;
    }
    return {Stop::End, 0};
}

// Takes a character of more than one byte; false when there is none.
inline bool TakeUtf8(const char*& from, const char* end, uint32_t& codePoint) noexcept
{
    const auto byte = [from](size_t i) { return static_cast<uint32_t>(static_cast<unsigned char>(from[i])); };
    const auto left = static_cast<size_t>(end - from);
    const uint32_t lead = byte(0);
    if (lead >= 0xE0 && lead < 0xF0)
    {
        if (left < 3 || !IsContinuation(byte(1)) || !IsContinuation(byte(2)))
        {
            return false;
        }
        codePoint = ((lead & 0x0F) << 12) | ((byte(1) & 0x3F) << 6) | (byte(2) & 0x3F);
        from += 3;
        return codePoint >= 0x800 && !IsSurrogate(codePoint);
    }
    if (lead < 0xE0)
    {
        if (lead < 0xC2 || left < 2 || !IsContinuation(byte(1)))
        {
            return false;
        }
        codePoint = ((lead & 0x1F) << 6) | (byte(1) & 0x3F);
        from += 2;
        return true;
    }
    if (left < 4 || lead > 0xF4 || !IsContinuation(byte(1)) || !IsContinuation(byte(2)) || !IsContinuation(byte(3)))
    {
        return false;
    }
    codePoint = ((lead & 0x07) << 18) | ((byte(1) & 0x3F) << 12) | ((byte(2) & 0x3F) << 6) | (byte(3) & 0x3F);
    from += 4;
    return codePoint >= 0x10000 && codePoint <= 0x10FFFF;
}

// The characters from U+0800 to U+FFFF, three bytes each, make up nearly all of an East Asian text: they have loops of
// their own.
template <class To>
inline void CopyThreeByte(const char*& from, const char* end, To*& to) noexcept
{
    while (end - from >= 3)
    {
        const uint32_t lead = static_cast<unsigned char>(from[0]) ^ 0xE0U;
        const uint32_t second = static_cast<unsigned char>(from[1]) ^ 0x80U;
        const uint32_t third = static_cast<unsigned char>(from[2]) ^ 0x80U;
        const uint32_t codePoint = (lead << 12) | (second << 6) | third;
        if (lead > 0x0F || (second | third) > 0x3F || codePoint < 0x800 || IsSurrogate(codePoint))
        {
            return;
        }
        *to++ = static_cast<To>(codePoint);
        from += 3;
    }
}

inline void CopyThreeByte(const Utf16Unit*& from, const Utf16Unit* end, char*& to) noexcept
{
    while (from != end && *from >= 0x800 && !IsSurrogate(*from))
    {
        const uint32_t unit = *from++;
        if (std::endian::native != std::endian::little || from == end)
        {
            to = Put(unit, to);
            continue;
        }
        // All at once, and a fourth byte where the next unit's will be.
        const uint32_t bytes = 0x8080E0U | (unit >> 12) | ((unit & 0xFC0) << 2) | ((unit & 0x3F) << 16);
        std::memcpy(to, &bytes, sizeof(bytes));
        to += 3;
    }
}

inline void CopyThreeByte(const Utf16Unit*&, const Utf16Unit*, char32_t*&) noexcept {}

// Takes the character at `from`, which is not one of those that the loops above copy; false, with `from` where it was,
// when there is none.
inline bool Take(const char*& from, const char* end, uint32_t& codePoint, Halt& halt) noexcept
{
    const char* const start = from;
    if (TakeUtf8(from, end, codePoint))
    {
        return true;
    }
    from = start;
    halt = MeasureBadUtf8(from, end);
    return false;
}

inline bool Take(const Utf16Unit*& from, const Utf16Unit* end, uint32_t& codePoint, Halt& halt) noexcept
{
    codePoint = *from;
    if (IsSurrogate(codePoint))
    {
        const bool last = from + 1 == end;
        if (!IsHighSurrogate(codePoint) || last || !IsLowSurrogate(from[1]))
        {
            halt = {IsHighSurrogate(codePoint) && last ? Stop::Cut : Stop::IllFormed, 1};
            return false;
        }
        codePoint = JoinSurrogates(codePoint, from[1]);
        ++from;
    }
    ++from;
    return true;
}

inline bool Take(const char32_t*& from, const char32_t* /*end*/, uint32_t& codePoint, Halt& halt) noexcept
{
    codePoint = *from;
    if (codePoint > 0x10FFFF || IsSurrogate(codePoint))
    {
        halt = {Stop::IllFormed, 1};
        return false;
    }
    ++from;
    return true;
}

// Converts well-formed text from `from` to `to`, which must have room for kMostUnits of every unit. Both stand behind
// the last whole character afterwards.
template <class From, class To>
inline Halt Scan(const From*& fromHere, const From* end, To*& toHere) noexcept
{
    const From* from = fromHere; // copies that need not be in memory while the loop runs
    To* to = toHere;
    Halt halt{Stop::End, 0};
    while (true)
    {
        if constexpr (sizeof(From) < sizeof(char32_t))
        {
            CopyAscii(from, end, to);
            CopyThreeByte(from, end, to);
        }
        if (from == end)
        {
            break;
        }
        if (sizeof(From) == 1 && static_cast<uint32_t>(*from) < 0x80)
        {
            continue;
        }
        uint32_t codePoint = 0;
        if (!Take(from, end, codePoint, halt))
        {
            break;
        }
        to = Put(codePoint, to);
    }
    fromHere = from;
    toHere = to;
    return halt;
}

} // namespace tsypr::utf

#endif
