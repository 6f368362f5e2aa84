// What ICU's table for 932 lacks of Windows' one. Internal to lib/unicode.
#ifndef TESSARY_LIB_UNICODE_CODE_PAGE_932_H
#define TESSARY_LIB_UNICODE_CODE_PAGE_932_H

#include "lib/unicode/utf16.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

namespace tsypr::cp932
{

// The table exchanges three control characters, as personal computers of old did, and it takes U+F86F, which is of
// private use, for U+2116. What is to be put in place of a source unit to undo that:
inline char Substitute(char byte) noexcept
{
    switch (byte)
    {
    case 0x1A:
        return 0x7F;
    case 0x1C:
        return 0x1A;
    case 0x7F:
        return 0x1C;
    default:
        return byte;
    }
}

inline Utf16Unit Substitute(Utf16Unit unit) noexcept
{
    switch (unit)
    {
    case 0x1A:
        return 0x1C;
    case 0x1C:
        return 0x7F;
    case 0x7F:
        return 0x1A;
    case 0xF86F:
        return 0xFFFF; // which no code page has
    default:
        return unit;
    }
}

// Whether the piece has a unit with a substitute. Sixteen bytes at a time, in arrays of our own, so that the compiler
// compares all of them at once.
template <class From>
bool NeedsSubstitute(std::basic_string_view<From> piece) noexcept
{
    using Bits = std::conditional_t<sizeof(From) == 1, uint8_t, uint16_t>;
    constexpr size_t kStep = 16 / sizeof(From);
    constexpr Bits kPrivate = sizeof(From) == 1 ? 0x1A : 0xF86F;
    Bits found[kStep] = {};
    while (piece.size() >= kStep)
    {
        Bits units[kStep];
        std::memcpy(units, piece.data(), sizeof(units));
        for (size_t i = 0; i < kStep; ++i)
        {
            found[i] |=
                static_cast<Bits>(static_cast<Bits>(units[i] == 0x1A) | static_cast<Bits>(units[i] == 0x1C) |
                                  static_cast<Bits>(units[i] == 0x7F) | static_cast<Bits>(units[i] == kPrivate));
        }
        piece.remove_prefix(kStep);
    }
    return std::ranges::any_of(found, [](Bits bits) { return bits != 0; }) ||
           std::ranges::any_of(piece, [](From unit) { return Substitute(unit) != unit; });
}

// The piece, or what stands in `room` in its place. None of these bytes is ever the second of a character.
template <class From>
std::basic_string_view<From> Substituted(std::basic_string_view<From> piece, std::basic_string<From>& room)
{
    if (!NeedsSubstitute(piece))
    {
        return piece;
    }
    room.resize(piece.size());
    std::ranges::transform(piece, room.begin(), [](From unit) { return Substitute(unit); });
    return room;
}

} // namespace tsypr::cp932

#endif
