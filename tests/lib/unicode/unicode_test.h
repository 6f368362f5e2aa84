// Shared by the tests of lib/unicode.
#ifndef TESSARY_TESTS_LIB_UNICODE_UNICODE_TEST_H
#define TESSARY_TESTS_LIB_UNICODE_UNICODE_TEST_H

#include "lib/unicode/codeset.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

namespace tsypr
{

inline std::ostream& operator<<(std::ostream& out, const CodeSetResult& result)
{
    return out << "status " << static_cast<int>(result.status) << ", " << result.replacements << " replaced, first at "
               << static_cast<ptrdiff_t>(result.firstBadOffset);
}

// UTF-16 literals are char16_t everywhere; our units are not.
inline Utf16String Wide(std::u16string_view text)
{
    return {text.begin(), text.end()};
}

// The same with "#" for U+FFFD, and how many of these there are.
struct Pattern
{
    explicit Pattern(std::u16string_view pattern) : text(Wide(pattern))
    {
        count = static_cast<size_t>(std::ranges::count(text, Utf16Unit{'#'}));
        std::ranges::replace(text, Utf16Unit{'#'}, static_cast<Utf16Unit>(0xFFFD));
    }

    Utf16String text;
    size_t count = 0;
};

inline constexpr CodeSetMode kStrict = CodeSetMode::Strict;
inline constexpr CodeSetMode kLenient = CodeSetMode::Lenient;

inline CodeSetResult Replaced(size_t count, size_t first)
{
    return {CodeSetStatus::Ok, count, first};
}

inline CodeSetResult Failed(CodeSetStatus status, size_t first)
{
    return {status, 0, first};
}

// All code points but the surrogates, in order.
inline std::u32string EveryCodePoint()
{
    std::u32string all;
    for (char32_t c = 0; c <= 0x10FFFF; c = c == 0xD7FF ? 0xE000 : c + 1)
    {
        all.push_back(c);
    }
    return all;
}

} // namespace tsypr

#endif
