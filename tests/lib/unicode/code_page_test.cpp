#include "lib/unicode/code_page.h"
#include "lib/unicode/process_code_page.h"
#include "tests/lib/child_process.h"
#include "tests/lib/unicode/unicode_test.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <clocale>
#endif

namespace tsypr
{
namespace
{

using namespace std::string_view_literals;

constexpr unsigned kPages[] = {1252, 932, 936, 949, 950, 54936};

TEST(CodePage, Names)
{
    const std::pair<unsigned, std::vector<const char*>> cases[] = {
        {1252, {"windows-1252"}},
        {932, {"Shift_JIS", "Windows-31J", "932"}},
        {936, {"GBK", "gb2312"}},
        {54936, {"GB18030"}},
        {949, {"ks_c_5601-1987", "EUC-KR"}},
        {950, {"Big5", "CP950"}},
        {65001, {"UTF-8", "utf8"}},
        {0, {"", "-", "utf-16", "iso-8859-1", "shift_jisx", "shift"}}};
    for (const auto& [page, names] : cases)
    {
        for (const char* const name : names)
        {
            EXPECT_EQ(CodeSet_PageByName(name), page) << name;
        }
        EXPECT_TRUE(page == 0 || CodeSet_PageByName(CodeSet_PageName(page)) == page);
    }
    EXPECT_EQ(CodeSet_PageName(437), nullptr);
}

// What a page has comes back as it was; all else is refused, and nothing in between.
TEST(CodePage, NothingIsLostSilently)
{
    const std::u32string all = EveryCodePoint();
    Utf16String wide;
    ASSERT_TRUE(CodeSet_Utf32ToUtf16(all, wide, kStrict).Ok());
    const size_t expected[] = {256, 9397, 24070, 17366, 19840, all.size()};
    for (size_t i = 0; i < std::size(kPages); ++i)
    {
        SCOPED_TRACE(kPages[i]);
        std::string bytes;
        Utf16String wideBack;
        std::u32string back;
        const CodeSetResult result = CodeSet_Utf16ToPage(kPages[i], wide, bytes, kLenient);
        ASSERT_TRUE(result.Ok());
        EXPECT_EQ(all.size() - result.replacements, expected[i]);
        ASSERT_TRUE(CodeSet_PageToUtf16(kPages[i], bytes, wideBack, kStrict).Lossless());
        ASSERT_TRUE(CodeSet_Utf16ToUtf32(wideBack, back, kStrict).Lossless());
        ASSERT_EQ(back.size(), all.size());
        size_t replaced = 0;
        for (size_t c = 0; c < all.size(); ++c)
        {
            replaced += back[c] == all[c] ? 0U : 1U;
            ASSERT_TRUE(back[c] == all[c] || back[c] == U'?') << std::hex << static_cast<uint32_t>(all[c]);
        }
        EXPECT_EQ(replaced, result.replacements);
    }
}

#ifdef _WIN32
// Windows' 932 has bytes that only its own tables know; in the others, its functions refuse the byte 0xFF only when
// asked to be strict, and ICU gives the same character of private use that they otherwise give.
bool IsKnownDifference(unsigned page, const std::string& bytes)
{
    return bytes == (page == 932 ? "\x80" : "\xFF") && page != 1252;
}

bool SystemDecodes(unsigned page, const std::string& bytes, Utf16String& out)
{
    wchar_t units[4];
    const int written =
        MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, bytes.data(), static_cast<int>(bytes.size()), units, 4);
    out.assign(units, static_cast<size_t>(written));
    return written != 0;
}

#endif

TEST(CodePage, EveryByteAndEveryTwoBytes)
{
    for (const unsigned page : kPages)
    {
        for (unsigned value = 0; value < 0x10000; ++value)
        {
            std::string bytes(value > 0xFF ? 1 : 0, static_cast<char>(value >> 8));
            bytes.push_back(static_cast<char>(value));
            Utf16String text;
            std::string back;
            Utf16String again;
            const CodeSetResult result = CodeSet_PageToUtf16(page, bytes, text, kStrict);
            ASSERT_TRUE(result.Ok() || (result.firstBadOffset < bytes.size() && text.empty()));
            if (result.Ok())
            {
                ASSERT_TRUE(CodeSet_Utf16ToPage(page, text, back, kStrict).Ok()) << page << " " << std::hex << value;
                ASSERT_TRUE(back == bytes || (CodeSet_PageToUtf16(page, back, again, kStrict).Ok() && again == text))
                    << page << " " << std::hex << value;
            }
#ifdef _WIN32
            // Wine has no table for GB18030, and looks for it every time.
            if (page != 54936 && (bytes.size() == 1 || IsDBCSLeadByteEx(page, static_cast<BYTE>(bytes[0]))) &&
                !IsKnownDifference(page, bytes))
            {
                ASSERT_EQ(SystemDecodes(page, bytes, again), result.Ok()) << page << " " << std::hex << value;
                ASSERT_TRUE(!result.Ok() || again == text) << page << " " << std::hex << value;
            }
#endif
        }
    }
}

TEST(CodePage, KnownCharactersAndBadParts)
{
    const struct
    {
        unsigned page;
        std::string_view bytes;
        std::u16string_view text; // "#" stands for U+FFFD
        CodeSetResult strict;
    } cases[] = {
        {1252, "\x80\x81\xFC", u"\u20AC\x81\u00FC", {}},
        {932, "\x88\xF3\xB1\x1A\x1C\x7F\x5C", u"\u5370\uFF71\x1A\x1C\x7F\\", {}},
        {936, "\x80\xD3\xA1", u"\u20AC\u5370", {}},
        {949, "\xC0\xCE", u"\uC778", {}},
        {950, "\xA6\x4C", u"\u5370", {}},
        {54936,
         "\x81\x30\x81\x30\x84\x31\xA4\x39\x90\x30\x81\x30\xE3\x32\x9A\x35",
         u"\x80\uFFFF\U00010000\U0010FFFF",
         {}},
        {54936, "\xE3\x32\x9A\x36", u"#", Failed(CodeSetStatus::IllFormed, 0)},
        {54936, "a\x81\x30\x81", u"a#", Failed(CodeSetStatus::Incomplete, 1)},
        {932, "a\x81\x20\x88", u"a# #", Failed(CodeSetStatus::IllFormed, 1)}, // nothing behind a bad byte is lost
        {949, "\x81 z\xFDz\xC0", u"# z#z#", Failed(CodeSetStatus::IllFormed, 0)}};
    for (const auto& [page, bytes, pattern, strict] : cases)
    {
        SCOPED_TRACE(testing::PrintToString(bytes));
        const auto [expected, count] = Pattern(pattern);
        Utf16String text = Wide(u"old");
        EXPECT_EQ(CodeSet_PageToUtf16(page, bytes, text, kLenient), Replaced(count, strict.firstBadOffset));
        EXPECT_EQ(text, expected);
        EXPECT_EQ(CodeSet_PageToUtf16(page, bytes, text, kStrict), strict);
        EXPECT_EQ(text.empty(), count != 0);
        std::string narrow;
        std::string narrowExpected;
        EXPECT_EQ(CodeSet_PageToUtf8(page, bytes, narrow, kLenient), Replaced(count, strict.firstBadOffset));
        EXPECT_TRUE(CodeSet_Utf16ToUtf8(expected, narrowExpected));
        EXPECT_EQ(narrow, narrowExpected);
    }
}

TEST(CodePage, FromUtf8TheFirstFaultCounts)
{
    const struct
    {
        unsigned page;
        std::string_view text;
        std::string_view lenient;
        CodeSetResult strict;
        size_t count;
    } cases[] = {{1252, "a\xC3\xBC", "a\xFC", {}, 0},
                 {1252, "a\xC3\xBC\xE6\xBC\xA2z\xFF", "a\xFC?z?", Failed(CodeSetStatus::Unmappable, 3), 2},
                 {1252, "\xF0\x9F\x98\x80\xC4\x80", "??", Failed(CodeSetStatus::Unmappable, 0), 2}, // U+0100 is not "A"
                 // Of the two codes that some characters have in 932, those that Windows takes.
                 {932, "\xE2\x88\xB5\xE2\x85\xA0\xE7\xBA\x8A", "\x81\xE6\x87\x54\xFA\x5C", {}, 0},
                 {932, "\xC3\xBC\xFF", "??", Failed(CodeSetStatus::Unmappable, 0), 2},
                 {932, "\xF0\x9F\x98\x80\xFF", "??", Failed(CodeSetStatus::Unmappable, 0), 2},
                 {932, "a\xC2\xAD", "a?", Failed(CodeSetStatus::Unmappable, 1), 1}, // a soft hyphen is a character, too
                 {54936, "\xF0\x90\x80\x80\xE4z", "\x90\x30\x81\x30?z", Failed(CodeSetStatus::IllFormed, 4), 1},
                 {950, "\xE5\x8D\xB0\xE5\x8D", "\xA6\x4C?", Failed(CodeSetStatus::Incomplete, 3), 1},
                 {kCodePageUtf8, "a\xFFz", "a\xEF\xBF\xBDz", Failed(CodeSetStatus::IllFormed, 1), 1},
                 {437, "a", "", Failed(CodeSetStatus::UnknownCodePage, kNoOffset), 0}};
    for (const auto& [page, text, lenient, strict, count] : cases)
    {
        SCOPED_TRACE(testing::PrintToString(text));
        std::string out = "old";
        EXPECT_EQ(CodeSet_Utf8ToPage(page, text, out, kStrict), strict);
        EXPECT_EQ(out, strict.Ok() ? lenient : "");
        const CodeSetStatus status = page == 437 ? CodeSetStatus::UnknownCodePage : CodeSetStatus::Ok;
        EXPECT_EQ(CodeSet_Utf8ToPage(page, text, out, kLenient), (CodeSetResult{status, count, strict.firstBadOffset}));
        EXPECT_EQ(out, lenient);
    }
}

TEST(CodePage, LongTextsAndNothing)
{
    // Longer than a block of the converter, with a character across its end; more bytes than usual for each character.
    const std::string unit = "x\x90\x30\x81\x30\xD3\xA1";
    std::string bytes;
    while (bytes.size() < (size_t{5} << 19))
    {
        bytes += unit;
    }
    Utf16String wide;
    std::string back;
    ASSERT_TRUE(CodeSet_PageToUtf16(54936, bytes, wide, kStrict).Lossless());
    ASSERT_TRUE(CodeSet_Utf16ToPage(54936, wide, back, kStrict).Lossless());
    EXPECT_TRUE(back == bytes);
    bytes += '\xFF';
    EXPECT_EQ(CodeSet_PageToUtf16(54936, bytes, wide, kLenient), Replaced(1, bytes.size() - 1));
    EXPECT_EQ(CodeSet_PageToUtf16(932, {}, wide, kStrict), CodeSetResult{});
    EXPECT_EQ(CodeSet_Utf8ToPage(932, {}, back, kStrict), CodeSetResult{});
    EXPECT_TRUE(wide.empty() && back.empty());
}

TEST(CodePage, ThreadsAndRelease)
{
    for (int round = 0; round < 3; ++round)
    {
        test::InThreads(4,
                        [](int)
                        {
                            for (int n = 0; n < 200; ++n)
                            {
                                std::string back;
                                Utf16String wide;
                                EXPECT_TRUE(CodeSet_PageToUtf16(932, "\x88\xF3\x8D\xFC", wide, kStrict).Ok());
                                EXPECT_TRUE(CodeSet_Utf16ToPage(936, wide, back, kLenient).Ok());
                            }
                        });
        CodeSetRelease();
    }
}

TEST(ProcessCodePage, ThereAndBack)
{
#ifndef _WIN32
    EXPECT_EQ(CodeSet_ProcessPage(), kCodePageUtf8); // in the locale "C"
#endif
    ASSERT_NE(CodeSet_PageName(CodeSet_ProcessPage()), nullptr) << CodeSet_ProcessPage();
    std::string utf8;
    std::string bytes;
    ASSERT_TRUE(CodeSet_Utf8ToPage(CodeSet_ProcessPage(), "A4 \xC3\xBC", bytes, kLenient).Ok());
    EXPECT_TRUE(CodeSet_ProcessToUtf8(bytes, utf8, kStrict).Ok());
    EXPECT_TRUE(CodeSet_Utf8ToProcess(utf8, bytes, kStrict).Lossless());
    Utf16String wide;
    EXPECT_TRUE(CodeSet_ProcessToUtf16(bytes, wide, kStrict).Ok());
    EXPECT_TRUE(CodeSet_Utf16ToProcess(wide, bytes, kStrict).Ok());
    EXPECT_EQ(CodeSet_Utf8ToProcess("a\xFFz", bytes, kLenient), Replaced(1, 1));
    EXPECT_EQ(CodeSet_Utf8ToProcess("a\xE4", bytes, kStrict), Failed(CodeSetStatus::Incomplete, 1));
    EXPECT_EQ(CodeSet_ProcessToUtf8({}, utf8, kStrict), CodeSetResult{});
}

} // namespace
} // namespace tsypr
