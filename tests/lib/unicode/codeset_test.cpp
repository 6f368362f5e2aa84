#include "lib/unicode/codeset.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <vector>

namespace tsypr
{
namespace
{

using namespace std::string_view_literals;

TEST(CodeSet, EveryCodePointSurvives)
{
    // The limits of each length as the compiler encodes them, and all there are, there and back.
    constexpr auto kNarrow = u8"\x7F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF"sv;
    constexpr auto kWide = u"\x7F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF"sv;
    Utf16String wide;
    ASSERT_TRUE(CodeSet_Utf8ToUtf16(std::string(kNarrow.begin(), kNarrow.end()), wide));
    EXPECT_TRUE(std::equal(wide.begin(), wide.end(), kWide.begin(), kWide.end()));
    for (uint32_t c = 0; c <= 0x10FFFF; c = c == 0xD7FF ? 0xE000 : c + 1)
    {
        Utf16String units(1, static_cast<Utf16Unit>(c < 0x10000 ? c : 0xD7C0 + (c >> 10)));
        units.append(c < 0x10000 ? 0 : 1, static_cast<Utf16Unit>(0xDC00 + c % 0x400));
        std::string narrow;
        ASSERT_TRUE(CodeSet_Utf16ToUtf8(units, narrow) && CodeSet_Utf8ToUtf16(narrow, wide)) << c;
        ASSERT_TRUE(wide == units) << c;
    }
}

TEST(CodeSet, RefusesIllFormedUtf8)
{
    std::istringstream list("\x80 \xBF "                                          // continuation bytes alone
                            "\xC3 \xE2\x82 \xF0\x9F\x98 "                         // cut
                            "\xC3\x28 \xE2\x28\xAC \xE2\x82\xC0 "                 // something else where a
                            "\xF0\x9F\x28\x80 \xF0\x9F\x98\x41 "                  // continuation must be
                            "\xC0\x80 \xC1\xBF \xE0\x9F\xBF \xF0\x8F\xBF\xBF "    // longer than needed
                            "\xED\xA0\x80 \xED\xBF\xBF \xED\xA0\xBD\xED\xB8\x80 " // surrogates
                            "\xF4\x90\x80\x80 \xF5\x80\x80\x80 \xF8\x88\x80\x80\x80 \xFE \xFF"); // beyond U+10FFFF
    for (std::string bad; list >> bad;)
    {
        for (const std::string& text : {bad, "ab" + bad, bad + "ab"})
        {
            Utf16String wide(1, Utf16Unit{'x'});
            const std::vector<char> exact(text.begin(), text.end()); // nothing may be read behind it
            EXPECT_FALSE(CodeSet_Utf8ToUtf16({exact.data(), exact.size()}, wide)) << testing::PrintToString(text);
            EXPECT_TRUE(wide.empty());
        }
    }
}

TEST(CodeSet, LoneSurrogatesBecomeReplacementCharacters)
{
    const std::pair<std::u16string_view, std::string_view> cases[] = {
        {u"a\xDE00z\xD83D", "a\xEF\xBF\xBDz\xEF\xBF\xBD"},
        {u"\xD83D\xD83D\xDE00", "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
        {u"", ""}};
    for (const auto& [units, expected] : cases)
    {
        const std::vector<Utf16Unit> exact(units.begin(), units.end());
        std::string text = "old";
        EXPECT_TRUE(CodeSet_Utf16ToUtf8({exact.data(), exact.size()}, text));
        EXPECT_EQ(text, expected);
    }
}

} // namespace
} // namespace tsypr
