#include "lib/string/format.h"

#include "lib/unicode/codeset.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cfloat>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

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

// Some C libraries do not keep to the standard here; these two are among the texts below.
bool IsOftenWrongInC(const std::string& flags, const std::string& precision, char conversion)
{
    const auto has = [&](char flag) { return flags.find(flag) != std::string::npos; };
    return (std::tolower(conversion) == 'a' && has('-') && has('0')) ||
           (conversion == 'o' && has('#') && precision == ".");
}

// The C library of the platform must give the same text for the conversion, under all flags, widths and precisions.
template <typename T>
void CompareWithC(const char* conversion, const char* allowedFlags, T value)
{
    constexpr char kFlags[] = "-+ #0";
    for (unsigned set = 0; set < 32; ++set)
    {
        std::string start = "%";
        bool allowed = true;
        for (unsigned i = 0; i < 5; ++i)
        {
            if ((set >> i & 1) != 0)
            {
                start += kFlags[i];
                allowed = allowed && std::strchr(allowedFlags, kFlags[i]) != nullptr;
            }
        }
        for (const char* width : {"", "1", "9", "30"})
        {
            for (const char* precision : {"", ".", ".1", ".7", ".25"})
            {
                const std::string format = start + width + precision + conversion;
                char expected[512] = {};
                std::snprintf(expected, sizeof(expected), format.c_str(), value); // NOLINT
                if (allowed && !IsOftenWrongInC(start, precision, format.back()))
                {
                    ASSERT_EQ(Format(format.c_str(), value), expected) << format << " of " << value;
                }
            }
        }
    }
}

TEST(Format, IntegersAreThoseOfTheCLibrary)
{
    const auto compare = [](const std::string& size, auto values)
    {
        for (const auto value : values)
        {
            CompareWithC((size + "d").c_str(), "-+ 0", value);
            CompareWithC((size + "i").c_str(), "-+ 0", value);
            CompareWithC((size + "u").c_str(), "-0", value);
            CompareWithC((size + "x").c_str(), "-#0", value);
            CompareWithC((size + "X").c_str(), "-#0", value);
            CompareWithC((size + "o").c_str(), "-#0", value);
        }
    };
    compare("hh", std::initializer_list<int>{0, 1, -1, 127, 128, 255, 256});
    compare("h", std::initializer_list<int>{0, -1, 32767, 32768, 65536});
    compare("", std::initializer_list<int>{0, 1, -42, INT_MAX, INT_MIN});
    compare("l", std::initializer_list<long>{0, -1, LONG_MAX, LONG_MIN});
    compare("ll", std::initializer_list<long long>{0, -1, LLONG_MAX, LLONG_MIN});
    compare("j", std::initializer_list<intmax_t>{-1, INTMAX_MAX});
    compare("z", std::initializer_list<ptrdiff_t>{-1, PTRDIFF_MAX});
    compare("t", std::initializer_list<ptrdiff_t>{-1, PTRDIFF_MIN});
}

TEST(Format, FloatingPointIsThatOfTheCLibrary)
{
    for (const double value : {0.0, -0.0, 0.5, -1.5, 3.14159265358979, 123456789.0, 1e-7, 6.02e23, HUGE_VAL, -HUGE_VAL})
    {
        for (const char* conversion : {"f", "F", "e", "E", "g", "G", "a", "A"})
        {
            CompareWithC(conversion, "-+ #0", value);
        }
    }
    EXPECT_EQ(Format("%.1Lf", 2.25L), "2.2");
    EXPECT_EQ(Format("%.0f", DBL_MAX).size(), 309U);
    EXPECT_EQ(Format("%08f", std::nan("")).find_first_not_of(" -nan"), std::string::npos);
}

TEST(Format, GivesTheseTexts)
{
    const Utf16String wide = Wide(u"\u00C4\u20AC\U0001F600z");
    const std::string narrow = "\xC3\x84\xE2\x82\xAC\xF0\x9F\x98\x80z";
    const char* const noText = nullptr;
    const Utf16Unit* const noWideText = nullptr;
    int written = 7;
    const std::pair<std::string, std::string> cases[] = {
        {Format(""), ""},
        {Format("100 %% sure, %s\n", "yes"), "100 % sure, yes\n"},
        {Format("[%s][%5s][%-5s][%05s][%2s]", "abc", "abc", "abc", "abc", "abc"), "[abc][  abc][abc  ][  abc][abc]"},
        {Format("[%.2s][%.0s][%.s][%5.1s][%-5.9s]", "abc", "abc", "abc", "abc", "abc"), "[ab][][][    a][abc  ]"},
        {Format("[%*s][%*s][%.*s][%.*s]", 4, "a", -4, "a", 1, "ab", -1, "ab"), "[   a][a   ][a][ab]"},
        {Format("[%S][%ls][%13S][%-13S]", wide.c_str(), wide.c_str(), wide.c_str(), wide.c_str()),
         "[" + narrow + "][" + narrow + "][   " + narrow + "][" + narrow + "   ]"},
        {Format("[%.2S][%.4S][%6.3S]", wide.c_str(), wide.c_str(), wide.c_str()), "[\xC3\x84][\xC3\x84][    \xC3\x84]"},
        {Format("%S", Wide(u"\xD83D").c_str()), "\xEF\xBF\xBD"},
        {Format("%S", Wide(u"\xDE00\xD83Dz").c_str()), "\xEF\xBF\xBD\xEF\xBF\xBDz"},
        {Format("%4S|", Wide(u"\xD83D\xD83D\xDE00").c_str()), "\xEF\xBF\xBD\xF0\x9F\x98\x80|"},
        {Format("%S|%8S", Wide(u"").c_str(), Wide(u"").c_str()), "|        "},
        {Format("%s %S %ls %.3s %8S", noText, noWideText, noWideText, noText, noWideText),
         "(null) (null) (null) (nu   (null)"},
        {Format("%c%c[%3c][%-3c]", 'a', '%', 'b', 'c'), "a%[  b][c  ]"},
        {Format("%C %lc [%4C] %C", 0x41, 0x20AC, 0xC4, 0xD83D), "A \xE2\x82\xAC [  \xC3\x84] \xEF\xBF\xBD"},
        {Format("%p [%20p] %p", reinterpret_cast<void*>(0x12AB), reinterpret_cast<void*>(0xF), noText),
         "00000000000012AB [    000000000000000F] 0000000000000000"},
        {Format("%I64d %I64x %I32d %I32u", -1LL, 0x123456789ABCLL, -1, 7U), "-1 123456789abc -1 7"},
        {Format("%#.o|%-09a|", 0, 0.5), "0|0x1p-1   |"},
        {Format("a%nb%d", &written, 5), "ab5"},
        // What is not known is copied and leaves the arguments to the others.
        {Format("%y %d", 5), "%y 5"},
        {Format("%-08.3q|%lk|%d", 5), "%-08.3q|%lk|5"},
        {Format("%d %", 5), "5 %"},
        {Format("%d %-5.2l", 5), "5 %-5.2l"},
        {Format(nullptr), ""},
    };
    for (const auto& [actual, expected] : cases)
    {
        EXPECT_EQ(actual, expected);
    }
    EXPECT_EQ(written, 7);
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
    const std::string longText(200'000, 'x');
    EXPECT_EQ(Format("%s", longText.c_str()), longText);
    EXPECT_EQ(Format("%.150000s", longText.c_str()).size(), 150'000U);
}

constexpr std::u16string_view kMixedWide = u"a\u00E4\u20AC\U0001F600z";
constexpr std::string_view kMixed = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z";

// The start of kMixed of at most `limit` bytes that cuts no character.
std::string_view MixedUpTo(size_t limit)
{
    size_t border = 0;
    for (const size_t end : {1U, 3U, 6U, 10U, 11U})
    {
        border = end <= limit ? end : border;
    }
    return kMixed.substr(0, border);
}

// A copy without a terminator; reading behind it is an error that the sanitizer sees.
template <typename Text>
auto Exactly(const Text& text, size_t count)
{
    auto copy = std::make_unique<std::remove_cvref_t<decltype(text[0])>[]>(count);
    std::copy_n(text.begin(), count, copy.get());
    return copy;
}

TEST(Format, PrecisionNeitherCutsCharactersNorReadsBehindTheText)
{
    const Utf16String units = Wide(kMixedWide);
    const Utf16String lone = Wide(u"xy\xD83D");
    for (size_t limit = 0; limit <= kMixed.size(); ++limit)
    {
        const int precision = static_cast<int>(limit);
        const std::string expected(MixedUpTo(limit));
        EXPECT_EQ(Format("%.*s", precision, Exactly(kMixed, limit).get()), expected) << limit;
        const auto wide = Exactly(units, std::min(limit, units.size()));
        EXPECT_EQ(Format("%.*S", precision, wide.get()), expected) << limit;
        EXPECT_EQ(Format("%12.*S", precision, wide.get()), std::string(12 - expected.size(), ' ') + expected) << limit;
    }
    EXPECT_EQ(Format("%.3S", Exactly(lone, 3).get()), "xy");
    // Not UTF-8 at all: taken byte by byte.
    const std::string_view noUtf8 = "\x80\x80\x80\x80\x80\x80";
    EXPECT_EQ(Format("%.*s", 6, Exactly(noUtf8, 6).get()), noUtf8);
}

TEST(Format, FixedBuffersAreCutBetweenCharacters)
{
    for (size_t capacity = 1; capacity <= kMixed.size() + 2; ++capacity)
    {
        const auto buffer = std::make_unique<char[]>(capacity + 1);
        std::memset(buffer.get(), '#', capacity + 1);
        const std::string_view expected = MixedUpTo(capacity - 1);
        EXPECT_EQ(FormatFixed(buffer.get(), capacity, "%s", kMixed.data()), expected.size());
        EXPECT_STREQ(buffer.get(), std::string(expected).c_str());
        EXPECT_EQ(buffer[capacity], '#');
    }
    char untouched = '#';
    EXPECT_EQ(FormatFixed(&untouched, 0, "%d", 5), 0U);
    EXPECT_EQ(FormatFixed(nullptr, 10, "%d", 5), 0U);
    EXPECT_EQ(untouched, '#');
}

TEST(Format, DoesNotFollowTheLocale)
{
    const char* found = nullptr;
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "German_Germany.1252", "German"})
    {
        found = found != nullptr ? found : std::setlocale(LC_ALL, name); // NOLINT(concurrency-mt-unsafe)
    }
    char c[16] = {};
    std::snprintf(c, sizeof(c), "%.1f", 1.5);
    const std::string text = Format("%.2f %g %d %S", 1234.5, 0.25, 1234567, Wide(u"\u20AC").c_str());
    std::setlocale(LC_ALL, "C"); // NOLINT(concurrency-mt-unsafe)
    EXPECT_EQ(text, "1234.50 0.25 1234567 \xE2\x82\xAC");
#ifdef _WIN32
    EXPECT_STREQ(c, "1,5") << "the test needs a locale with a decimal comma";
#endif
}

} // namespace
} // namespace tsypr
