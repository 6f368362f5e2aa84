// Windows' own conversions, and memory that runs out.
#include "lib/unicode/code_page_stream.h"
#include "lib/unicode/process_code_page.h"
#include "lib/unicode/system_code_page_windows.h"
#include "tests/lib/unicode/unicode_test.h"
#include "tests/remote/allocation_faults.h"

namespace tsypr
{
namespace
{

TEST(SystemCodePage, SameResultsAsOurTables)
{
    const std::string_view texts[] = {
        "plain", "", "\x88\xF3\xB1\x8D\xFC", "a\x81\x20z", "a\x88", "\xB0\xA1\xB0", "\xFDz\x81\x31", "\xA6\x4C"};
    const std::u16string_view wideTexts[] = {
        u"a\u5370\u0100", u"\U0001F600z", u"\u00FC\xD83D", u"\xDE00\xD83Dz", u"\u00AD\u20AC", u"plain", u""};
    const auto compare = [](unsigned page, auto text, auto ours, auto convert, auto convertBySystem)
    {
        for (const CodeSetMode mode : {kStrict, kLenient})
        {
            auto system = decltype(ours)(3, 'x');
            const CodeSetResult expected = convert(page, text, ours, mode);
            EXPECT_EQ(convertBySystem(page, text, system, mode), expected) << page;
            EXPECT_EQ(system, ours) << page << " " << testing::PrintToString(text);
        }
    };
    for (const unsigned page : {1252U, 932U, 936U, 949U, 950U, kCodePageUtf8})
    {
        for (const std::string_view text : texts)
        {
            compare(page, text, Utf16String(), CodeSet_PageToUtf16, SystemPageToUtf16);
        }
        for (const std::u16string_view units : wideTexts)
        {
            const Utf16String text = Wide(units);
            compare(page, Utf16View(text), std::string(), CodeSet_Utf16ToPage, Utf16ToSystemPage);
        }
    }
    Utf16String wide;
    EXPECT_EQ(SystemPageToUtf16(1252, {"", size_t{1} << 30}, wide, kLenient),
              Failed(CodeSetStatus::TooLong, kNoOffset));
}

TEST(CodeSetMemory, RunsOutAnywhere)
{
    const std::string text(100, 'x');
    const Utf16String wideText(100, L'x');
    using Convert = std::function<CodeSetResult(std::string&, Utf16String&)>;
    const Convert conversions[] = {
        [&](auto&, auto& out) { return CodeSet_Utf8ToUtf16(text, out, kLenient); },
        [&](auto& out, auto&) { return CodeSet_Utf16ToUtf8(wideText, out, kStrict); },
        [&](auto&, auto& out) { return CodeSet_PageToUtf16(936, text, out, kStrict); },
        [&](auto& out, auto&) { return CodeSet_Utf8ToPage(932, text, out, kStrict); },
        [&](auto& out, auto&) { return CodeSet_ProcessToUtf8(text, out, kStrict); },
        [&](auto&, auto& out) { return UtfStream<char, Utf16Unit>(kStrict).Append(text, out); },
    };
    // Hold the converters that are open, so that new ones have to be opened. (Opening the very first is left out: the
    // compiler's own threading functions do not survive that.)
    const CodePageDecoder held936(936, kStrict);
    const CodePageDecoder held932(932, kStrict);
    for (const Convert& convert : conversions)
    {
        CodeSetStatus status = CodeSetStatus::OutOfMemory;
        long n = 0;
        for (; status == CodeSetStatus::OutOfMemory && n < 100; ++n)
        {
            std::string narrow;
            Utf16String wide;
            const test::AllocationFault fault(n);
            status = convert(narrow, wide).status;
        }
        EXPECT_EQ(status, CodeSetStatus::Ok);
        EXPECT_GT(n, 1);
    }
}

} // namespace
} // namespace tsypr
