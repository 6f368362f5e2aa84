#include "lib/user/preferences.h"

#include <gtest/gtest.h>

#include <optional>

namespace tsypr
{
namespace
{

TEST(Preferences, ReadsLines)
{
    struct Case
    {
        const char* text;
        std::optional<std::string> value; // of the key "a.b"
        size_t damaged;
    };
    const Case cases[] = {
        {"", std::nullopt, 0},
        {"a.b = \"c\"", "c", 0},
        {"a.b=\"c\"\n", "c", 0},
        {"\t a.b \t=\t \"c\" \t\r\n", "c", 0},
        {"\xEF\xBB\xBF"
         "a.b = \"c\"",
         "c",
         0},
        {"# a.b = \"no\"\n\n  # a.b = \"no\"\n \t\r\na.b = \"c\"\n", "c", 0},
        {"a.b = \"1\"\na.b = \"2\"\n", "2", 0},
        {"a.c = \"1\"\nA.B = \"2\"\n", std::nullopt, 0},
        {R"(a.b = "")", "", 0},
        {R"(a.b = " = # ")", " = # ", 0},
        {R"(a.b = "D:\logs\new.log")", R"(D:\logs\new.log)", 0},
        {R"(a.b = "\"\\\"")", R"("\")", 0},
        {R"(a.b = "D:\logs\\")", R"(D:\logs\)", 0},
        {R"(a.b = "D:\logs\")", std::nullopt, 1}, // the quote is escaped, the value has no end
        {"a.b = \"\xE6\x97\xA5\"", "\xE6\x97\xA5", 0},
        {"a.b = c", std::nullopt, 1},
        {"a.b = \"", std::nullopt, 1},
        {"a.b = \"c\" d", std::nullopt, 1},
        {"a.b =", std::nullopt, 1},
        {"a.b", std::nullopt, 1},
        {" = \"c\"", std::nullopt, 1},
        {"a.b \"c\"", std::nullopt, 1},
        {"=\nx\na.b = \"c\"\n\"\n", "c", 3},
        {"a.b = \"1\"\na.b = 2\n", "1", 1}, // a damaged line takes nothing back
    };
    for (const Case& c : cases)
    {
        Dictionary values;
        EXPECT_EQ(ParsePreferences(c.text, values), c.damaged) << c.text;
        const char* value = values.Get("a.b");
        EXPECT_EQ(value != nullptr ? std::optional<std::string>(value) : std::nullopt, c.value) << c.text;
    }
}

TEST(Preferences, AnswersNothingUnlessStarted)
{
    std::string value = "old";
    PreferencesStop();
    EXPECT_FALSE(ReadPreference("tests.none", value));
    EXPECT_EQ(value, "");
    PreferencesStart();
    PreferencesStart();
    EXPECT_FALSE(ReadPreference("tests.none", value));
    PreferencesStop();
    PreferencesStop();
    EXPECT_FALSE(ReadPreference("tests.none", value));
}

} // namespace
} // namespace tsypr
