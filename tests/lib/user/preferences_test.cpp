#include "lib/user/preferences.h"

#include <gtest/gtest.h>

namespace tsypr
{
namespace
{

TEST(Preferences, ReadsLines)
{
    struct Case
    {
        const char* text;
        const char* value; // of the key "a.b"; null: none
        size_t damaged;
    };
    const Case cases[] = {
        {"\t a.b \t=\t \"c\" \t\r\n", "c", 0},
        {"\xEF\xBB\xBF a.b=\"c\"", "c", 0},
        {"# a.b = \"no\"\n\n  # a.b = \"no\"\n \t\r\na.b = \"c\"\n", "c", 0},
        {"a.b = \"1\"\na.b = \"2\"\n", "2", 0},
        {"a.c = \"1\"\nA.B = \"2\"\n", nullptr, 0},
        {R"(a.b = "")", "", 0},
        {R"(a.b = " = # ")", " = # ", 0},
        {R"(a.b = "D:\logs\new.log")", R"(D:\logs\new.log)", 0},
        {R"(a.b = "\"D:\logs\\")", R"("D:\logs\)", 0},
        {R"(a.b = "D:\logs\")", nullptr, 1}, // the quote is escaped, the value has no end
        {"a.b = \"\xE6\x97\xA5\"", "\xE6\x97\xA5", 0},
        {"a.b = c\na.b = \"\na.b = \"c\" d\na.b =\na.b\n = \"c\"\na.b \"c\"", nullptr, 7},
        {"=\nx\na.b = \"1\"\n\"\na.b = 2\n", "1", 4}, // a damaged line takes nothing back
    };
    for (const Case& c : cases)
    {
        Dictionary values;
        EXPECT_EQ(ParsePreferences(c.text, values), c.damaged) << c.text;
        EXPECT_STREQ(values.Get("a.b"), c.value) << c.text;
    }
}

} // namespace
} // namespace tsypr
