// What ICU's table for 932 lacks of Windows' one. Internal to lib/unicode.
#ifndef TESSARY_LIB_UNICODE_CODE_PAGE_932_H
#define TESSARY_LIB_UNICODE_CODE_PAGE_932_H

#include "lib/unicode/utf16.h"

#include <algorithm>
#include <string>
#include <string_view>

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

// The piece, or what stands in `room` in its place. None of these bytes is ever the second of a character.
template <class From>
std::basic_string_view<From> Substituted(std::basic_string_view<From> piece, std::basic_string<From>& room)
{
    if (std::ranges::all_of(piece, [](From unit) { return Substitute(unit) == unit; }))
    {
        return piece;
    }
    room.resize(piece.size());
    std::ranges::transform(piece, room.begin(), [](From unit) { return Substitute(unit); });
    return room;
}

} // namespace tsypr::cp932

#endif
