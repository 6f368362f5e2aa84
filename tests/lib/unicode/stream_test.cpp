#include "lib/unicode/code_page_stream.h"
#include "tests/lib/unicode/unicode_test.h"

namespace tsypr
{
namespace
{

using namespace std::string_view_literals;

// Cuts the text into three at every pair of places, and compares with the whole.
template <class Stream, class From, class To>
void CheckCuts(Stream& stream,
               std::basic_string_view<From> text,
               const std::basic_string<To>& whole,
               CodeSetResult result)
{
    for (size_t first = 0; first <= text.size(); ++first)
    {
        for (size_t second = first; second <= text.size(); ++second)
        {
            std::basic_string<To> out;
            stream.Append(text.substr(0, first), out);
            stream.Append(text.substr(first, second - first), out);
            stream.Append(text.substr(second), out);
            ASSERT_EQ(stream.Finish(out), result) << "cut at " << first << " and " << second;
            ASSERT_TRUE(out == whole) << "cut at " << first << " and " << second;
        }
    }
}

constexpr std::string_view kUtf8Texts[] = {"a\xC3\xBC\xE4\xB8\xAD\xF0\x9F\x98\x80z"sv,
                                           "\xC3z\xE4\xB8\xE4z\xF0\x9F\xF0\x9F\x98\xFF"sv,
                                           "\xED\xA0\x80\xE0\x80\xF4\x90\x80\xF0\x9F\x98"sv};

TEST(UtfStream, CutsDoNotShow)
{
    const auto check = [](auto text, auto whole, auto convert)
    {
        using From = typename decltype(text)::value_type;
        using To = typename decltype(whole)::value_type;
        UtfStream<From, To> stream(kLenient);
        const CodeSetResult result = convert(text, whole, kLenient);
        CheckCuts(stream, text, whole, result);
    };
    using Convert8 = CodeSetResult (*)(std::string_view, Utf16String&, CodeSetMode) noexcept;
    for (const std::string_view text : kUtf8Texts)
    {
        check(text, Utf16String(), Convert8(CodeSet_Utf8ToUtf16));
        check(text, std::u32string(), CodeSet_Utf8ToUtf32);
    }
    using Convert16 = CodeSetResult (*)(Utf16View, std::string&, CodeSetMode) noexcept;
    for (const std::u16string_view units : {u"\u00FC\U0001F600\u4E2D"sv, u"\xD83D\xD83D\xDE00\xDE00z\xD83D"sv})
    {
        const Utf16String text = Wide(units);
        check(Utf16View(text), std::string(), Convert16(CodeSet_Utf16ToUtf8));
        check(Utf16View(text), std::u32string(), CodeSet_Utf16ToUtf32);
    }
    check(U"a\U0001F600"sv, Utf16String(), CodeSet_Utf32ToUtf16);
}

TEST(UtfStream, StrictStopsAndStartsAgain)
{
    UtfStream<char, Utf16Unit> stream(kStrict);
    for (int round = 0; round < 2; ++round)
    {
        Utf16String out = Wide(u"before");
        EXPECT_TRUE(stream.Append("ab\xE4\xB8", out).Ok());
        EXPECT_EQ(stream.Append("\xAD\xE4z", out), Failed(CodeSetStatus::IllFormed, 5));
        EXPECT_EQ(out, Wide(u"beforeab"));
        EXPECT_EQ(stream.Append("z", out), Failed(CodeSetStatus::IllFormed, 5));
        EXPECT_EQ(stream.Finish(out), Failed(CodeSetStatus::IllFormed, 5));
        EXPECT_EQ(out, Wide(u"beforeab"));
        EXPECT_TRUE(stream.Append("\xF0\x9F", out).Ok());
        EXPECT_EQ(stream.Finish(out), Failed(CodeSetStatus::Incomplete, 0));
    }
}

TEST(CodePageStream, CutsDoNotShow)
{
    const struct
    {
        unsigned page;
        std::string_view text;
    } cases[] = {{932, "\x88\xF3\x8D\xFC\xB1\x81\x31\x88\xFF\x1A\x81"},
                 {936, "\xD3\xA1\xCB\xA2\x80\xFFz\xD3\x20\xD3"},
                 {949, "\xC0\xCE\xBC\xE2\x81\x20\xC9\xFE\xC0"},
                 {950, "\xA6\x4C\xA8\xEA\xA6\x20\x80\xA6"},
                 {54936, "\xD3\xA1\x81\x30\x81\x30\x90\x30\x81\x30\xFE\x39\xFE\x39\x81\x30\x20\x81\x30\x81"},
                 {54936, "\x81\x30\x81\x81\x30\x84\x31\xA4\x37\x81\x30"},
                 {kCodePageUtf8, kUtf8Texts[1]}};
    for (const auto& [page, text] : cases)
    {
        SCOPED_TRACE(page);
        CodePageDecoder lenient(page, kLenient);
        CodePageDecoder strict(page, kStrict);
        Utf16String wide;
        CodeSetResult result = CodeSet_PageToUtf16(page, text, wide, kLenient);
        EXPECT_GT(result.replacements, 0U);
        CheckCuts(lenient, text, wide, result);
        result.status = CodeSet_PageToUtf16(page, text, wide, kStrict).status;
        EXPECT_EQ(CodeSet_PageToUtf16(page, text, wide, kStrict), Failed(result.status, result.firstBadOffset));

        const Utf16String units = Wide(u"a\u5370\U00020000\xD840\u00AD\x1A\uF86F\xDC00\u200Bz\xD840");
        CodePageEncoder encoder(page, kLenient);
        std::string narrow;
        CheckCuts(encoder, Utf16View(units), narrow, CodeSet_Utf16ToPage(page, units, narrow, kLenient));
    }
}

TEST(CodePageStream, StrictStopsAndStartsAgain)
{
    CodePageDecoder decoder(932, kStrict);
    CodePageEncoder encoder(932, kStrict);
    for (int round = 0; round < 2; ++round)
    {
        Utf16String wide = Wide(u"before");
        EXPECT_TRUE(decoder.Append("a\x88", wide).Ok());
        EXPECT_TRUE(decoder.Append("\xF3\x8D", wide).Ok());
        EXPECT_EQ(decoder.Append("\x20z", wide), Failed(CodeSetStatus::IllFormed, 3));
        EXPECT_EQ(decoder.Finish(wide), Failed(CodeSetStatus::IllFormed, 3));
        EXPECT_EQ(wide, Wide(u"beforea\u5370"));
        EXPECT_TRUE(decoder.Append("\x88", wide).Ok());
        EXPECT_EQ(decoder.Finish(wide), Failed(CodeSetStatus::Incomplete, 0));

        std::string narrow;
        EXPECT_TRUE(encoder.Append(Wide(u"\u5370\xD83D"), narrow).Ok());
        EXPECT_EQ(encoder.Append(Wide(u"\xDE00"), narrow), Failed(CodeSetStatus::Unmappable, 1));
        EXPECT_EQ(encoder.Finish(narrow), Failed(CodeSetStatus::Unmappable, 1));
        EXPECT_TRUE(encoder.Append(Wide(u"\xD83D"), narrow).Ok());
        EXPECT_EQ(encoder.Finish(narrow), Failed(CodeSetStatus::Incomplete, 0));
    }
    Utf16String wide;
    CodePageDecoder unknown(1200, kLenient);
    EXPECT_EQ(unknown.Append("a", wide), Failed(CodeSetStatus::UnknownCodePage, kNoOffset));
    EXPECT_EQ(unknown.Finish(wide), Failed(CodeSetStatus::UnknownCodePage, kNoOffset));
}

} // namespace
} // namespace tsypr
