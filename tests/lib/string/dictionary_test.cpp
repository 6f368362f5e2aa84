#include "lib/string/dictionary.h"

#include "lib/string/key_value_text.h"

#include <gtest/gtest.h>

#include <climits>
#include <optional>
#include <sstream>

namespace tsypr
{
namespace
{

TEST(Dictionary, ReadsValuesAsTypes)
{
    struct Case
    {
        const char* text;
        int64_t number;
        uint32_t small; // 10 to 100
        double real;
        int yes; // -1: neither
    };
    constexpr int64_t kNoNumber = -77;
    constexpr uint32_t kNoSmall = 7;
    constexpr double kNoReal = -0.5;
    std::vector<Case> cases = {{" 42\t", 42, 42, 42, -1},
                               {"+10", 10, 10, 10, -1},
                               {"0x1F", 31, 31, kNoReal, -1},
                               {"-0Xa", -10, kNoSmall, kNoReal, -1},
                               {"100", 100, 100, 100, -1},
                               {"101", 101, kNoSmall, 101, -1},
                               {"1", 1, kNoSmall, 1, 1},
                               {"0", 0, kNoSmall, 0, 0},
                               {"9223372036854775807", INT64_MAX, kNoSmall, 9223372036854775807.0, -1},
                               {"-9223372036854775808", INT64_MIN, kNoSmall, -9223372036854775808.0, -1},
                               {"9223372036854775808", kNoNumber, kNoSmall, 9223372036854775808.0, -1},
                               {"4294967306", 4294967306, kNoSmall, 4294967306.0, -1}, // 10 in 32 bits
                               {"2.5e1", kNoNumber, kNoSmall, 25, -1}};
    const std::pair<int, std::vector<const char*>> others[] = {
        {1, {" TRUE", "Yes", "on"}},
        {0, {"oFF", "no", "false "}},
        {-1, {"2,5", "1e999", "inf", "nan", "+-5", "0x", "5 0", "", "+", "truer"}}};
    for (const auto& [yes, texts] : others)
    {
        for (const char* const text : texts)
        {
            cases.push_back({text, kNoNumber, kNoSmall, kNoReal, yes});
        }
    }
    for (const Case& c : cases)
    {
        Dictionary values;
        ASSERT_TRUE(values.Set("key", c.text));
        EXPECT_EQ(values.GetInt64("key", kNoNumber), c.number) << c.text;
        EXPECT_EQ(values.GetUint32("key", kNoSmall, 10, 100), c.small) << c.text;
        EXPECT_EQ(values.GetDouble("key", kNoReal), c.real) << c.text;
        EXPECT_EQ(values.GetBool("key", false), c.yes == 1) << c.text;
        EXPECT_EQ(values.GetBool("key", true), c.yes != 0) << c.text;
        EXPECT_STREQ(values.GetText("key", "none"), c.text);
    }
    const Dictionary none;
    EXPECT_EQ(none.GetInt64("key", 5), 5);
    EXPECT_TRUE(none.GetBool("key", true));
    EXPECT_EQ(none.GetText("key", nullptr), nullptr);
}

TEST(Dictionary, KeepsItsKeysInOrder)
{
    Dictionary values;
    for (const char* key : {"b", "", "B", "a", "b"})
    {
        EXPECT_TRUE(values.Set(key, std::string("of ") + key));
    }
    EXPECT_EQ(values.Size(), 4U);
    EXPECT_TRUE(values.Remove("a"));
    EXPECT_FALSE(values.Remove("a"));
    std::string all;
    for (const auto& [key, value] : values)
    {
        all += key + "=" + value + ";";
    }
    EXPECT_EQ(all, "=of ;B=of B;b=of b;");
    values.Clear();
    EXPECT_EQ(values.Get("b"), nullptr);
}

TEST(Dictionary, EveryValueComesBack)
{
    std::string bytes;
    for (int i = 0; i < 256; ++i)
    {
        bytes.push_back(static_cast<char>(i));
    }
    Dictionary values;
    std::istringstream texts("| "
                             "|D:\\logs\\new.log|\\\\server\\share\\|\\|\\\\\\|\"|\\\"|a\\\nb|\\<0A>|\\\\<0A>|"
                             "\xC3\xA4\\\xE2\x82\xAC|\x80\\\xFF|# = \"x\"|\r\n\t|\xEF\xBB\xBF");
    for (std::string text; std::getline(texts, text, '|');)
    {
        ASSERT_TRUE(values.Set("key " + std::to_string(values.Size()), text));
    }
    ASSERT_TRUE(values.Set("all bytes", bytes));
    ASSERT_TRUE(values.Set("\xC3\xA4 \"#", "no plain key"));
    std::string text;
    ASSERT_TRUE(values.Save(text));
    Dictionary back;
    EXPECT_EQ(back.Load(text), 0U);
    EXPECT_TRUE(std::equal(back.begin(), back.end(), values.begin(), values.end())) << text;

    ASSERT_TRUE(values.Set("last", "x"));
    for (const char* key : {"", " a", "a\t", "#a", "a=b", "a\nb", "\x7F", "\xEF\xBB\xBFx", "\xE4"})
    {
        Dictionary one;
        ASSERT_TRUE(one.Set(key, "value"));
        EXPECT_FALSE(one.Save(text)) << key;
        EXPECT_EQ(text, "");
    }
}

TEST(KeyValueText, IsWrittenTheWayPeopleWriteIt)
{
    const std::pair<std::string_view, std::string_view> cases[] = {{R"(D:\logs\new.log)", R"("D:\logs\new.log")"},
                                                                   {R"(\\server\logs\)", R"("\\\\server\logs\\")"},
                                                                   {R"(say "x\y")", R"("say \"x\y\"")"},
                                                                   {"a\nb\t\\\x01", R"("a\<0A>b\<09>\\\<01>")"},
                                                                   {"\xE4", R"("\<E4>")"},
                                                                   {"C:\\\xC3\xA4", "\"C:\\\xC3\xA4\""}};
    for (const auto& [value, written] : cases)
    {
        std::string out;
        AppendQuotedValue(out, value);
        EXPECT_EQ(out, written);
    }
}

TEST(KeyValueText, LinesAreReadAndDamagedOnesSkipped)
{
    using namespace std::string_view_literals;
    struct Case
    {
        std::string_view text;
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
        {"a.b=\"\xE4\"\na.b=\"\0\""sv, nullptr, 2},
        {"a.b=\"\\<0g>\\<4\\\"\"", "\\<0g>\\<4\"", 0},
    };
    for (const Case& c : cases)
    {
        Dictionary values;
        EXPECT_EQ(values.Load(c.text), c.damaged) << c.text;
        EXPECT_STREQ(values.Get("a.b"), c.value) << c.text;
    }
}

TEST(KeyValueText, DamagedLinesAreNamed)
{
    Dictionary values;
    std::vector<size_t> damaged;
    EXPECT_EQ(values.Load("\xEF\xBB\xBF# one\r\na = \"1\r\nb = \"2\"\r\n\r\nc\n", &damaged), 2U);
    EXPECT_EQ(damaged, (std::vector<size_t>{2, 5}));
    std::string many;
    for (int i = 0; i < 1000; ++i)
    {
        many += "x\n";
    }
    damaged.clear();
    EXPECT_EQ(values.Load(many, &damaged), 1000U);
    EXPECT_EQ(damaged.size(), Dictionary::kMostListed);
}

TEST(KeyValueText, RewritingChangesOneValue)
{
    struct Case
    {
        std::string before;
        std::optional<std::string_view> value; // of "a"; none: removed
        std::string after;
    };
    const std::string mark = "\xEF\xBB\xBF";
    const Case cases[] = {
        {"", "1", "a = \"1\"\n"},
        {"", {}, ""},
        {mark, "1", mark + "a = \"1\"\n"},
        {"# c\r\nb=\"2\"", "1", "# c\r\nb=\"2\"\r\na = \"1\"\r\n"},
        {"b", "1", "b\na = \"1\"\n"},
        {"\n\n  a\t= \"0\"  \r\n#a = \"0\"\nA = \"0\"\n", "1", "\n\n  a\t= \"1\"  \r\n#a = \"0\"\nA = \"0\"\n"},
        {"a = \"0\"\na = \"damaged\nb = \"2\"\na=\"3\"\n", "1", "a = \"0\"\na = \"damaged\nb = \"2\"\na=\"1\"\n"},
        {"a = \"0\"\na = \"damaged\nb = \"2\"\na=\"3\"", {}, "a = \"damaged\nb = \"2\"\n"},
        {mark + "a=\"0\"\nb=\"2\"\n", "\"\n", mark + "a=\"\\\"\\<0A>\"\nb=\"2\"\n"},
        {mark + "a=\"0\"\r\nb=\"2\"\n", {}, mark + "b=\"2\"\n"},
        {"a=\"0\"\n" + mark + "a=\"2\"\n", {}, "\n" + mark + "a=\"2\"\n"}, // a damaged line stays one
        {"a = \"\\<41>\"", "A", "a = \"\\<41>\""},                         // the value is the same already
        {"a = \"\"\xE4\n", "1", "a = \"\"\xE4\na = \"1\"\n"}};
    for (const Case& c : cases)
    {
        std::string text = c.before;
        EXPECT_TRUE(RewriteKeyValueText(text, "a", c.value ? &*c.value : nullptr));
        EXPECT_EQ(text, c.after) << c.before;
    }
    std::string text = "a = \"0\"";
    const std::string_view value = "1";
    EXPECT_FALSE(RewriteKeyValueText(text, "a=b", &value));
    EXPECT_EQ(text, "a = \"0\"");
}

} // namespace
} // namespace tsypr
