#include "tests/lib/unicode/unicode_test.h"

#include <unicode/ustring.h>

#include <vector>

namespace tsypr
{
namespace
{

using namespace std::string_view_literals;

TEST(CodeSet, EveryCodePointSurvives)
{
    const std::u32string all = EveryCodePoint();
    std::u32string back;
    Utf16String wide;
    std::string narrow;
    std::string narrowAgain;
    ASSERT_TRUE(CodeSet_Utf32ToUtf8(all, narrow, kStrict).Lossless());
    ASSERT_TRUE(CodeSet_Utf8ToUtf32(narrow, back, kStrict).Lossless());
    EXPECT_TRUE(back == all);
    ASSERT_TRUE(CodeSet_Utf8ToUtf16(narrow, wide, kStrict).Lossless());
    ASSERT_TRUE(CodeSet_Utf16ToUtf8(wide, narrowAgain, kStrict).Lossless());
    EXPECT_TRUE(narrowAgain == narrow);
    ASSERT_TRUE(CodeSet_Utf16ToUtf32(wide, back, kStrict).Lossless());
    EXPECT_TRUE(back == all);
    Utf16String wideAgain;
    ASSERT_TRUE(CodeSet_Utf32ToUtf16(all, wideAgain, kStrict).Lossless());
    EXPECT_TRUE(wideAgain == wide);
}

TEST(CodeSet, ReplacesMaximalSubparts)
{
    // The first four are the Unicode Standard's own examples.
    const struct
    {
        std::string_view bytes;
        std::u16string_view expected; // "#" stands for U+FFFD
        CodeSetResult strict;
    } cases[] = {{"\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41", u"########A", Failed(CodeSetStatus::IllFormed, 0)},
                 {"\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41", u"########A", Failed(CodeSetStatus::IllFormed, 0)},
                 {"\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42", u"#####A##B", Failed(CodeSetStatus::IllFormed, 0)},
                 {"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41", u"####A", Failed(CodeSetStatus::IllFormed, 0)},
                 {"ab\xE4\xB8\xADz\xE4\xB8z", u"ab\u4E2Dz#z", Failed(CodeSetStatus::IllFormed, 6)},
                 {"a\xE4\xB8", u"a#", Failed(CodeSetStatus::Incomplete, 1)},
                 {"\xF0\x9F\x98", u"#", Failed(CodeSetStatus::Incomplete, 0)},
                 {"\xE0\x80", u"##", Failed(CodeSetStatus::IllFormed, 0)},
                 {"\xFE", u"#", Failed(CodeSetStatus::IllFormed, 0)}};
    for (const auto& [bytes, pattern, strict] : cases)
    {
        SCOPED_TRACE(testing::PrintToString(bytes));
        const auto [expected, count] = Pattern(pattern);
        const std::vector<char> exact(bytes.begin(), bytes.end()); // nothing may be read behind it
        const std::string_view text(exact.data(), exact.size());
        Utf16String wide = Wide(u"old");
        EXPECT_EQ(CodeSet_Utf8ToUtf16(text, wide, kLenient), Replaced(count, strict.firstBadOffset));
        EXPECT_EQ(wide, expected);
        EXPECT_EQ(CodeSet_Utf8ToUtf16(text, wide, kStrict), strict);
        EXPECT_TRUE(wide.empty());
        std::u32string wider;
        EXPECT_EQ(CodeSet_Utf8ToUtf32(text, wider, kLenient), Replaced(count, strict.firstBadOffset));
        EXPECT_TRUE(std::ranges::equal(wider, expected));
        EXPECT_FALSE(CodeSet_Utf8ToUtf16(text, wide));
    }
}

// Every sequence of four out of the bytes at the limits of all classes, against ICU.
TEST(CodeSet, AgreesWithIcuOnEveryIllFormedSequence)
{
    constexpr auto kBytes =
        "A\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xEC\xED\xEF\xF0\xF1\xF3\xF4\xF5\xFF"sv;
    std::string text(4, 'A');
    Utf16String ours;
    UChar theirs[8];
    for (size_t n = 0; n < kBytes.size() * kBytes.size() * kBytes.size() * kBytes.size(); ++n)
    {
        size_t rest = n;
        for (char& byte : text)
        {
            byte = kBytes[rest % kBytes.size()];
            rest /= kBytes.size();
        }
        int32_t length = 0;
        int32_t replaced = 0;
        UErrorCode error = U_ZERO_ERROR;
        u_strFromUTF8WithSub(theirs, 8, &length, text.data(), 4, 0xFFFD, &replaced, &error);
        const CodeSetResult lenient = CodeSet_Utf8ToUtf16(text, ours, kLenient);
        const bool same = std::equal(ours.begin(), ours.end(), theirs, theirs + length);
        const CodeSetResult strict = CodeSet_Utf8ToUtf16(text, ours, kStrict);
        ASSERT_TRUE(same && lenient.replacements == static_cast<size_t>(replaced) && strict.Ok() == (replaced == 0) &&
                    strict.firstBadOffset == lenient.firstBadOffset)
            << testing::PrintToString(text);
    }
}

TEST(CodeSet, IllFormedUtf16AndUtf32)
{
    const struct
    {
        std::u16string_view units;
        std::string_view expected;
        CodeSetResult strict;
        size_t count;
    } cases[] = {
        {u"a\xDE00z\xD83D", "a\xEF\xBF\xBDz\xEF\xBF\xBD", Failed(CodeSetStatus::IllFormed, 1), 2},
        {u"\xD83D\xD83D\xDE00", "\xEF\xBF\xBD\xF0\x9F\x98\x80", Failed(CodeSetStatus::IllFormed, 0), 1},
        {u"\u4E2D\xDC00\xD800x", "\xE4\xB8\xAD\xEF\xBF\xBD\xEF\xBF\xBDx", Failed(CodeSetStatus::IllFormed, 1), 2},
        {u"\U0001F600\xD83D", "\xF0\x9F\x98\x80\xEF\xBF\xBD", Failed(CodeSetStatus::Incomplete, 2), 1}};
    for (const auto& [units, expected, strict, count] : cases)
    {
        const std::vector<Utf16Unit> exact(units.begin(), units.end());
        const Utf16View text(exact.data(), exact.size());
        std::string narrow = "old";
        EXPECT_TRUE(CodeSet_Utf16ToUtf8(text, narrow));
        EXPECT_EQ(narrow, expected);
        EXPECT_EQ(CodeSet_Utf16ToUtf8(text, narrow, kLenient), Replaced(count, strict.firstBadOffset));
        EXPECT_EQ(narrow, expected);
        EXPECT_EQ(CodeSet_Utf16ToUtf8(text, narrow, kStrict), strict);
        EXPECT_TRUE(narrow.empty());
        std::u32string wider;
        EXPECT_EQ(CodeSet_Utf16ToUtf32(text, wider, kLenient), Replaced(count, strict.firstBadOffset));
        EXPECT_EQ(CodeSet_Utf16ToUtf32(text, wider, kStrict), strict);
    }
    for (const char32_t bad : {0xD800U, 0xDFFFU, 0x110000U, 0xFFFFFFFFU})
    {
        const std::u32string text{U'x', bad, U'\U0001F600', bad};
        std::string narrow;
        EXPECT_EQ(CodeSet_Utf32ToUtf8(text, narrow, kLenient), Replaced(2, 1));
        EXPECT_EQ(narrow, "x\xEF\xBF\xBD\xF0\x9F\x98\x80\xEF\xBF\xBD");
        EXPECT_EQ(CodeSet_Utf32ToUtf8(text, narrow, kStrict), Failed(CodeSetStatus::IllFormed, 1));
        Utf16String wide;
        EXPECT_EQ(CodeSet_Utf32ToUtf16(text, wide, kLenient), Replaced(2, 1));
        EXPECT_EQ(wide, Wide(u"x\uFFFD\U0001F600\uFFFD"));
    }
}

// Lengths around the steps of the fast loops, each with something else at every place.
TEST(CodeSet, EveryPlaceInAnAsciiText)
{
    for (size_t length = 0; length < 40; ++length)
    {
        for (size_t place = 0; place < length; ++place)
        {
            std::u32string text(length, U'a');
            text[place] = place % 3 == 0 ? U'\u00FC' : (place % 3 == 1 ? U'\u4E2D' : U'\U0001F600');
            std::string narrow;
            Utf16String wide;
            std::u32string back;
            ASSERT_TRUE(CodeSet_Utf32ToUtf8(text, narrow, kStrict).Lossless());
            ASSERT_TRUE(CodeSet_Utf8ToUtf16(narrow, wide, kStrict).Lossless());
            ASSERT_TRUE(CodeSet_Utf16ToUtf8(wide, narrow, kStrict).Lossless());
            ASSERT_TRUE(CodeSet_Utf8ToUtf32(narrow, back, kStrict).Lossless());
            ASSERT_EQ(back, text);
            narrow[place] = '\xFF';
            EXPECT_EQ(CodeSet_Utf8ToUtf16(narrow, wide, kStrict).firstBadOffset, place);
        }
    }
    Utf16String wide = Wide(u"old");
    EXPECT_TRUE(CodeSet_Utf8ToUtf16({}, wide, kStrict).Lossless());
    EXPECT_TRUE(wide.empty());
    EXPECT_TRUE(CodeSet_Utf8ToUtf16("a\0b"sv, wide));
    EXPECT_EQ(wide, Wide(u"a\0b"sv));
}

} // namespace
} // namespace tsypr
