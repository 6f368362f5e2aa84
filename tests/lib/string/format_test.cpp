#include "lib/string/format.h"

#include "lib/unicode/codeset.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cfloat>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <vector>

namespace tsypr
{
namespace
{

// Unlike FormatFixed not checked by the compiler, so that it lets odd formats pass.
std::string Format(const char* format, ...)
{
    TextBuffer out;
    va_list arguments;
    va_start(arguments, format);
    FormatTo(out, format, arguments);
    va_end(arguments);
    return std::string(out.View());
}

Utf16String Wide(std::u16string_view text)
{
    return {text.begin(), text.end()};
}

// The C library of the platform must give the same text.
template <typename T>
void ExpectAsC(const std::string& format, T value)
{
    char expected[512] = {};
    std::snprintf(expected, sizeof(expected), format.c_str(), value); // NOLINT
    ASSERT_EQ(Format(format.c_str(), value), expected) << format << " of " << value;
}

// The conversion under all flags, widths and precisions.
template <typename T>
void CompareWithC(const std::string& conversion, const std::string& allowedFlags, T value)
{
    for (unsigned set = 0; set < 1U << allowedFlags.size(); ++set)
    {
        std::string start = "%";
        for (size_t i = 0; i < allowedFlags.size(); ++i)
        {
            start.append(set >> i & 1, allowedFlags[i]);
        }
        for (const char* width : {"", "1", "9", "30"})
        {
            for (const char* precision : {"", ".", ".1", ".7", ".25"})
            {
                ExpectAsC(start + width + precision + conversion, value);
            }
        }
    }
}

TEST(Format, NumbersAreThoseOfTheCLibrary)
{
    const auto compare = [](const std::string& size, auto values)
    {
        for (const auto value : values)
        {
            for (const auto& [conversion, flags] :
                 {std::pair{"d", "-+ 0"}, {"u", "-0"}, {"x", "-#0"}, {"X", "-#0"}, {"o", "-0"}})
            {
                CompareWithC(size + conversion, flags, value);
            }
        }
    };
    compare("hh", std::initializer_list<int>{0, 1, -1, 127, 128, 255, 256});
    compare("h", std::initializer_list<int>{0, -1, 32767, 32768, 65536});
    compare("", std::initializer_list<int>{0, 1, -42, INT_MAX, INT_MIN});
    compare("l", std::initializer_list<long>{0, -1, LONG_MAX, LONG_MIN});
    compare("ll", std::initializer_list<long long>{0, -1, LLONG_MAX, LLONG_MIN});
    for (const double value : {0.0, -0.0, 0.5, -1.5, 3.14159265358979, 123456789.0, 1e-7, 6.02e23, HUGE_VAL, -HUGE_VAL})
    {
        for (const char* conversion : {"f", "F", "e", "E", "g", "G"})
        {
            CompareWithC(conversion, "-+ #0", value);
        }
    }
}

// Numbers of every size and with every digit, as their bits come.
TEST(Format, FloatsAreThoseOfTheCLibrary)
{
    std::mt19937_64 random(20'240'305); // NOLINT(cert-msc51-cpp): the same numbers in every run
    for (int i = 0; i < 3000; ++i)
    {
        const auto any = std::bit_cast<double>(random());
        // Every other one of a size that people use, some with few digits, so that there are ties.
        const double value = i % 2 == 0 ? any : std::ldexp(static_cast<double>(random() % 100'000), -(i % 20));
        if (std::isnan(value))
        {
            continue;
        }
        for (const char* format : {"%f", "%.0f", "%#.3F", "%.12e", "%.0E", "%g", "%#g", "%.17G", "%.1g", "%.40g"})
        {
            ASSERT_NO_FATAL_FAILURE(ExpectAsC(format, value));
        }
#ifdef __linux__ // other C libraries choose another first digit
        for (const char* format : {"%a", "%.0a", "%#.1A", "%.12a", "%020.15a"})
        {
            ASSERT_NO_FATAL_FAILURE(ExpectAsC(format, value));
        }
#endif
    }
}

// Pairs of what was formatted and what is expected.
void ExpectSame(std::initializer_list<std::pair<std::string, std::string>> texts)
{
    for (const auto& [actual, expected] : texts)
    {
        EXPECT_EQ(actual, expected);
    }
}

TEST(Format, FloatsAreTheSameEverywhere)
{
    const double infinity = HUGE_VAL;
    const double least = 4.9406564584124654e-324;
    ExpectSame({{Format("%a|%A|%.2a|%#.0a", 1.0, 0.15625, 1.999, 1.5), "0x1p+0|0X1.4P-3|0x2.00p+0|0x2.p+0"},
                {Format("%a|%012a|%-12a|%+a", 0.0, -2.0, 0.5, DBL_MAX),
                 "0x0p+0|-0x000001p+1|0x1p-1      |+0x1.fffffffffffffp+1023"},
                {Format("%a|%.16a", least, 1.1), "0x0.0000000000001p-1022|0x1.199999999999a000p+0"},
                {Format("%e|%E|%.3g|%g", 1e100, 1e-5, 1e-300, 1e9), "1.000000e+100|1.000000E-05|1e-300|1e+09"},
                {Format("%.0e|%.10g", least, least), "5e-324|4.940656458e-324"},
                {Format("%g|%#g|%#.3g|%.0g|%G", 100000.0, 100000.0, 0.0, 0.00012345, 1e-10),
                 "100000|100000.|0.00|0.0001|1E-10"},
                {Format("%.0f|%.0f|%.0f|%.1f|%.2f", 0.5, 1.5, 2.5, 0.25, 1.005), "0|2|2|0.2|1.00"},
                {Format("%.3f|%f|%.1f|%.0f", 0.0004, 0.0000005, 9.95, 999.5), "0.000|0.000000|9.9|1000"},
                {Format("%f|%+F|%5e|%-5g|%05a", infinity, infinity, -infinity, infinity, -infinity),
                 "inf|+INF| -inf|inf  | -inf"},
                {Format("%f|%08G|%+e", std::nan(""), -std::nan(""), std::nan("")), "nan|     NAN|+nan"},
                {Format("%.1Lf|%Lg|%La|%Le", 2.25L, -1e10L, 1.0L, 0.0L), "2.2|-1e+10|0x1p+0|0.000000e+00"}});
}

TEST(Format, GivesTheseTexts)
{
    const Utf16String wideText = Wide(u"\u00C4\u20AC\U0001F600z");
    const Utf16Unit* const wide = wideText.c_str();
    const std::string narrow = "\xC3\x84\xE2\x82\xAC\xF0\x9F\x98\x80z";
    const void* const none = nullptr;
    int written = 7;
    ExpectSame(
        {{Format("100%%[%5s][%-5s][%05s][%2s]", "abc", "abc", "abc", "abc"), "100%[  abc][abc  ][  abc][abc]"},
         {Format("[%.2s][%.s][%5.1s][%-5.9s]", "abc", "abc", "abc", "abc"), "[ab][][    a][abc  ]"},
         {Format("[%*s][%*s][%.*s][%.*s]", 4, "a", -4, "a", 1, "ab", -1, "ab"), "[   a][a   ][a][ab]"},
         {Format("[%S][%13ls][%-13S]", wide, wide, wide), "[" + narrow + "][   " + narrow + "][" + narrow + "   ]"},
         {Format("%4S|", Wide(u"\xD83D\xD83D\xDE00").c_str()), "\xEF\xBF\xBD\xF0\x9F\x98\x80|"},
         {Format("%S|%3S", Wide(u"").c_str(), Wide(u"").c_str()), "|   "},
         {Format("%s %S %ls %.3s %8S", none, none, none, none, none), "(null) (null) (null) (nu   (null)"},
         {Format("%c%c[%3c][%-3c]", 'a', '%', 'b', 'c'), "a%[  b][c  ]"},
         {Format("%C %lc [%4C] %C", 0x41, 0x20AC, 0xC4, 0xD83D), "A \xE2\x82\xAC [  \xC3\x84] \xEF\xBF\xBD"},
         {Format("%p [%20p]", reinterpret_cast<void*>(0x12AB), none), "00000000000012AB [    0000000000000000]"},
         {Format("%I64d %I64x %I32d %I32u", -1LL, 0x123456789ABCLL, -1, 7U), "-1 123456789abc -1 7"},
         {Format("%jx %zu %td", INTMAX_MAX, SIZE_MAX, ptrdiff_t{-1}), "7fffffffffffffff 18446744073709551615 -1"},
         {Format("%#.o|%#5o|%-09a|%i", 0, 8, 0.5, -9), "0|  010|0x1p-1   |-9"},
         {Format("a%nb%d", &written, 5), "ab5"},
         // What is not known is copied and leaves the arguments to the others.
         {Format("%y %-08.3q|%lk|%d", 5), "%y %-08.3q|%lk|5"},
         {Format("%d %-5.2l", 5) + Format("%d %", 5), "5 %-5.2l5 %"},
         {Format(nullptr), ""}});
    EXPECT_EQ(written, 7);
}

TEST(Format, TakesArgumentsByNumber)
{
    const Utf16String wideText = Wide(u"\u20AC");
    const Utf16Unit* const wide = wideText.c_str();
    const std::string euro = "\xE2\x82\xAC";
    ExpectSame(
        {{Format("%2$s of %1$d, 100%%, %1$x", 30, "abc"), "abc of 30, 100%, 1e"},
         {Format("[%2$*1$d][%2$-*1$d|%3$.*1$s]", 4, 5, "abcdef"), "[   5][5   |abcd]"},
         {Format("%5$.1f %4$S %3$lld %2$s %1$c %1$hhd", 'a', "b", -3LL, wide, 1.5), "1.5 " + euro + " -3 b a 97"},
         {Format("%3$Lg %2$zx %1$p", nullptr, size_t{255}, 0.5L), "0.5 ff 0000000000000000"},
         {Format("%32$d%31$d", 1) + Format("%1$s%33$d", "a"), "%32$d%31$da%33$d"},
         // The first conversion decides.
         {Format("%1$s %s %d %1$*d|%*1$d", "a"), "a %s %d %1$*d|%*1$d"},
         {Format("%s %1$s %d", "a", 7), "a %1$s 7"},
         // Behind a gap nothing can be found, and nothing is what it was not before.
         {Format("%1$s %3$s", "a"), "a %3$s"},
         {Format("%2$s", "a"), "%2$s"},
         {Format("%1$s %1$d %1$S %2$*1$d", "a", 5), "a %1$d %1$S %2$*1$d"},
         // No such number, no such conversion.
         {Format("%0$d %1$d", 5) + Format("%1$% %1$y %1$s", "a"), "%0$d 5%1$% %1$y a"},
         {Format("%99999999999999999999$d|%1$-5.2", 5), "%99999999999999999999$d|%1$-5.2"},
         {Format("%1$n%2$d%", nullptr, 5), "5%"}});
    std::string all;
    std::string expected;
    for (int i = 32; i > 0; --i)
    {
        all += "%" + std::to_string(i) + "$d ";
        expected += std::to_string(i) + " ";
    }
    const auto formatAll = [&all]<int... I>(std::integer_sequence<int, I...>)
    {
        return Format(all.c_str(), (I + 1)...);
    };
    EXPECT_EQ(formatAll(std::make_integer_sequence<int, 32>()), expected);
}

TEST(Format, CorruptWidthsStayWithinReason)
{
    for (const std::string& text : {Format("%999999999999999999999d", 1),
                                    Format("%.999999999d", 1),
                                    Format("%*s", INT_MIN, "a"),
                                    Format("%*S", INT_MAX, Wide(u"a").c_str()),
                                    Format("%.999999999f", 1.0)})
    {
        EXPECT_LT(text.size(), 10'000U);
        EXPECT_GT(text.size(), 500U);
    }
    EXPECT_EQ(Format("%.0f", DBL_MAX).size(), 309U);
    const std::string longText(200'000, 'x');
    std::string text = "old";
    EXPECT_TRUE(FormatString(text, "%.150000s%s", longText.c_str(), longText.c_str()));
    EXPECT_EQ(text, std::string(350'000, 'x'));
    EXPECT_TRUE(FormatString(text, nullptr));
    EXPECT_EQ(text, "");
}

TEST(Format, TextsAreCutBetweenCharactersAndNotReadBeyond)
{
    const Utf16String mixedWide = Wide(u"a\u00E4\u20AC\U0001F600z  i");
    const std::string mixed = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z  i";
    constexpr size_t kBorders[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 11, 12, 13, 14};
    for (size_t limit = 0; limit < std::size(kBorders); ++limit)
    {
        const std::string expected = mixed.substr(0, kBorders[limit]);
        const int precision = static_cast<int>(limit);
        // Copies without terminators: reading behind them is an error that the sanitizer sees.
        const std::vector<char> narrow(mixed.begin(), mixed.begin() + precision);
        const std::vector<Utf16Unit> wide(mixedWide.begin(), mixedWide.begin() + std::min(precision, 9));
        EXPECT_EQ(Format("%.*s", precision, narrow.data()), expected) << limit;
        EXPECT_EQ(Format("%.*S", precision, wide.data()), expected) << limit;
        EXPECT_EQ(Format("%15.*S", precision, wide.data()), std::string(15 - expected.size(), ' ') + expected);
        std::string buffer(limit + 2, '#');
        EXPECT_EQ(FormatFixed(buffer.data(), limit + 1, "%.11s%3s", mixed.c_str(), "i"), expected.size());
        EXPECT_EQ(buffer.substr(0, expected.size() + 1), expected + '\0');
        EXPECT_EQ(buffer.back(), '#');
    }
    // A text that comes cut shows it, where there is room for that.
    EXPECT_EQ(Format("%s|%5s|%-5s|%.9s|%.4s|%.3s", "a\xE2\x82", "\xF0\x9F\x98", "\xC3", "ab\xE2", "ab\xE2", "ab\xE2"),
              "a\xEF\xBF\xBD|  \xEF\xBF\xBD|\xEF\xBF\xBD  |ab\xEF\xBF\xBD|ab|ab");
    char four[4];
    EXPECT_EQ(FormatFixed(four, sizeof(four), "%s", "ab\xE2"), 2U);
    EXPECT_STREQ(four, "ab");
    const std::string noUtf8 = "\x80\x80\x80"; // taken byte by byte
    EXPECT_EQ(Format("%.*s", 3, std::vector<char>(noUtf8.begin(), noUtf8.end()).data()), noUtf8);
    const Utf16String cutPair = Wide(u"xy\xD83D");
    EXPECT_EQ(Format("%.3S", std::vector<Utf16Unit>(cutPair.begin(), cutPair.end()).data()), "xy");
    char untouched = '#';
    EXPECT_EQ(FormatFixed(&untouched, 0, "%d", 5), 0U);
    EXPECT_EQ(FormatFixed(nullptr, 10, "%d", 5), 0U);
    EXPECT_EQ(untouched, '#');
}

TEST(TextBuffer, GrowsWithoutLosingAnything)
{
    // Piece lengths that meet the end of the first room exactly, by one less and by one more, and leap far over it.
    for (const size_t piece : {1U, 7U, 512U, 1023U, 1024U, 1025U, 100'000U})
    {
        TextBuffer buffer;
        std::string expected;
        for (char c = 'a'; expected.size() < 5000 || c == 'b'; c = c == 'z' ? 'a' : static_cast<char>(c + 1))
        {
            buffer.Append(std::string(piece, c));
            buffer.AppendFill('-', piece / 2);
            expected.append(piece, c).append(piece / 2, '-');
        }
        EXPECT_EQ(buffer.View(), expected) << piece;
        EXPECT_FALSE(buffer.Cut());
        buffer.Truncate(3);
        buffer.Truncate(10);
        EXPECT_EQ(buffer.View(), expected.substr(0, 3));
    }
}

#ifdef _WIN32
TEST(Format, DoesNotFollowTheLocale)
{
    ASSERT_NE(std::setlocale(LC_ALL, "German_Germany.1252"), nullptr); // NOLINT(concurrency-mt-unsafe)
    EXPECT_STREQ(std::localeconv()->decimal_point, ",");               // NOLINT(concurrency-mt-unsafe)
    EXPECT_EQ(Format("%.2f %g %d %S", 1234.5, 0.25, 1234567, L"\u20AC"), "1234.50 0.25 1234567 \xE2\x82\xAC");
    std::setlocale(LC_ALL, "C"); // NOLINT(concurrency-mt-unsafe)
}
#endif

} // namespace
} // namespace tsypr
