#include "lib/unicode/codeset.h"

#include <gtest/gtest.h>

#include <memory>

namespace tsypr
{
namespace
{

using namespace std::string_view_literals;

// The texts of one code point by the definitions of the encodings.
std::string ToUtf8(uint32_t c)
{
    const auto lead = [c](uint32_t mark, int shift) { return static_cast<char>(mark + (c >> shift)); };
    const auto more = [c](int shift) { return static_cast<char>(0x80 + (c >> shift) % 0x40); };
    return c < 0x80      ? std::string{lead(0, 0)}
           : c < 0x800   ? std::string{lead(0xC0, 6), more(0)}
           : c < 0x10000 ? std::string{lead(0xE0, 12), more(6), more(0)}
                         : std::string{lead(0xF0, 18), more(12), more(6), more(0)};
}

Utf16String ToUtf16(uint32_t c)
{
    return c < 0x10000
               ? Utf16String{static_cast<Utf16Unit>(c)}
               : Utf16String{static_cast<Utf16Unit>(0xD7C0 + (c >> 10)), static_cast<Utf16Unit>(0xDC00 + c % 0x400)};
}

TEST(CodeSet, EveryCodePointSurvives)
{
    std::string narrow;
    Utf16String wide;
    for (uint32_t c = 0; c <= 0x10FFFF; ++c)
    {
        if (c >= 0xD800 && c <= 0xDFFF)
        {
            continue;
        }
        const std::string expectedNarrow = ToUtf8(c);
        const Utf16String expectedWide = ToUtf16(c);
        ASSERT_TRUE(CodeSet_Utf8ToUtf16(expectedNarrow, wide)) << c;
        ASSERT_TRUE(wide == expectedWide) << c;
        ASSERT_TRUE(CodeSet_Utf16ToUtf8(expectedWide, narrow)) << c;
        ASSERT_EQ(narrow, expectedNarrow) << c;
    }
}

TEST(CodeSet, RefusesIllFormedUtf8)
{
    constexpr std::string_view kBad[] = {
        "\x80"sv, // continuation bytes alone
        "\xBF"sv,
        "\xC3"sv, // cut after the lead byte, or later
        "\xE2\x82"sv,
        "\xF0\x9F\x98"sv,
        "\xC3\x28"sv, // something else where a continuation must be
        "\xE2\x28\xAC"sv,
        "\xE2\x82\xC0"sv,
        "\xF0\x9F\x28\x80"sv,
        "\xF0\x9F\x98\x41"sv,
        "\xC0\x80"sv, // longer than needed
        "\xC1\xBF"sv,
        "\xE0\x9F\xBF"sv,
        "\xF0\x8F\xBF\xBF"sv,
        "\xED\xA0\x80"sv, // surrogates
        "\xED\xBF\xBF"sv,
        "\xED\xA0\xBD\xED\xB8\x80"sv,
        "\xF4\x90\x80\x80"sv, // beyond U+10FFFF
        "\xF5\x80\x80\x80"sv,
        "\xF8\x88\x80\x80\x80"sv, // lengths that are no more
        "\xFE"sv,
        "\xFF"sv,
    };
    for (const std::string_view bad : kBad)
    {
        for (const std::string& text : {std::string(bad), "ab" + std::string(bad), std::string(bad) + "ab"})
        {
            const auto exact = std::make_unique<char[]>(text.size()); // nothing may be read behind it
            std::copy(text.begin(), text.end(), exact.get());
            Utf16String wide(1, Utf16Unit{'x'});
            EXPECT_FALSE(CodeSet_Utf8ToUtf16({exact.get(), text.size()}, wide)) << testing::PrintToString(text);
            EXPECT_TRUE(wide.empty());
        }
    }
}

TEST(CodeSet, LoneSurrogatesBecomeReplacementCharacters)
{
    const std::pair<std::u16string_view, std::string_view> cases[] = {
        {u"\xD83D", "\xEF\xBF\xBD"},
        {u"\xDE00", "\xEF\xBF\xBD"},
        {u"a\xD83Dz", "a\xEF\xBF\xBDz"},
        {u"\xDE00\xD83D", "\xEF\xBF\xBD\xEF\xBF\xBD"},
        {u"\xD83D\xD83D\xDE00", "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
        {u"", ""},
    };
    for (const auto& [units, expected] : cases)
    {
        const auto exact = std::make_unique<Utf16Unit[]>(units.size());
        std::copy(units.begin(), units.end(), exact.get());
        std::string text = "old";
        EXPECT_TRUE(CodeSet_Utf16ToUtf8({exact.get(), units.size()}, text));
        EXPECT_EQ(text, expected);
    }
    // A NUL is a character like any other in a text of known length.
    Utf16String wide;
    EXPECT_TRUE(CodeSet_Utf8ToUtf16("a\0b"sv, wide));
    EXPECT_EQ(wide.size(), 3U);
}

} // namespace
} // namespace tsypr
