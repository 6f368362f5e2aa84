#include "lib/log/line_throttle.h"

#include "tests/lib/log/log_files.h"

#include <gmock/gmock.h>

#include <memory>
#include <set>

namespace tsypr::test
{
namespace
{

constexpr char kSites[2] = {};

// A throttle that lets 3 lines pass in 10 s, and what it says.
class ThrottleTest : public testing::Test
{
protected:
    // Says a line at a time in milliseconds; "+" is noted when it is admitted, "-" when not, "(times text)" for lines
    // that were held back.
    void Say(int64_t now, std::string_view text, int level = 2, int site = 0)
    {
        RepeatedLine line;
        while (m_throttle->TakeDue(now, line))
        {
            Note(line);
        }
        RepeatedLine displaced;
        const LineKey key = {&kSites[site], level, text.size(), HashText(text)};
        m_said += m_throttle->Admit(key, text, now, displaced) ? '+' : '-';
        if (displaced.times != 0)
        {
            Note(displaced);
        }
    }

    // The same several times; what was said.
    std::string SayTimes(int times, int64_t now, std::string_view text)
    {
        for (; times != 0; --times)
        {
            Say(now, text);
        }
        return std::exchange(m_said, {});
    }

    std::string Rest()
    {
        RepeatedLine line;
        while (m_throttle->TakeAny(line))
        {
            Note(line);
        }
        return std::exchange(m_said, {});
    }

    void Note(const RepeatedLine& line)
    {
        m_said += '(' + std::to_string(line.times) + ' ' + std::string(line.text) + ')';
    }

    void SetUp() override
    {
        m_throttle->Start(3, 10);
    }

    std::unique_ptr<LineThrottle> m_throttle = std::make_unique<LineThrottle>();
    std::string m_said;
};

TEST_F(ThrottleTest, CountsAreExactAndTold)
{
    struct Step
    {
        int64_t now;
        const char* text;
        int times;
        const char* said;
    };
    const Step steps[] = {
        {1000, "same", 5, "+++--"},
        {10'999, "same", 1, "-"},         // still in the time
        {11'000, "same", 1, "(3 same)+"}, // over: told, and counted anew
        {11'000, "same", 4, "++--"},
        {11'500, "second", 5, "+++--"},
        {20'999, "other", 1, "+"},
        {21'000, "other", 1, "(2 same)+"}, // any line brings out what is due
        {31'000, "other", 1, "(2 second)+"},
        {1'000'000, "same", 5, "+++--"},
        {5, "same", 1, "(2 same)+"}, // a clock that is set back ends the counting
        {6, "same", 3, "++-"},
    };
    for (const Step& step : steps)
    {
        EXPECT_EQ(SayTimes(step.times, step.now, step.text), step.said) << step.now;
    }
    EXPECT_EQ(Rest(), "(1 same)");
    EXPECT_EQ(Rest(), "");
}

TEST_F(ThrottleTest, WhatDiffersInAnythingIsNotHeldBack)
{
    const std::string length(100, 'x');
    for (int i = 0; i < 3; ++i)
    {
        Say(0, length);
        Say(0, length, 3);
        Say(0, length, 2, 1);
        Say(0, length + 'x');
        Say(0, length.substr(1) + 'y');
        Say(0, 'y' + length.substr(1));
        Say(0, "");
        Say(0, std::string_view("\0", 1));
    }
    EXPECT_EQ(m_said, std::string(24, '+'));
}

TEST_F(ThrottleTest, ManyDifferentLinesDoNotHideTheFrequentOne)
{
    std::string admitted;
    for (int i = 0; i < 20'000; ++i)
    {
        ASSERT_EQ(SayTimes(1, i / 4, "line " + std::to_string(i)), "+") << i;
        admitted += i % 8 == 0 ? SayTimes(1, i / 4, "failed") : "";
    }
    EXPECT_EQ(admitted, "+++" + std::string(2497, '-'));
    EXPECT_EQ(Rest(), "(2497 failed)");
}

// More lines that come too often than there are places: each loses its place at times, and then tells what it held.
TEST_F(ThrottleTest, NothingIsForgottenWhenPlacesAreScarce)
{
    constexpr int kLines = 400;
    std::string said;
    for (int line = 0; line < kLines; ++line)
    {
        said += SayTimes(12, line, "line " + std::to_string(line));
    }
    said += Rest();
    EXPECT_EQ(std::ranges::count(said, '+'), 3 * kLines);
    EXPECT_EQ(std::ranges::count(said, '-'), 9 * kLines);
    for (int line = 0; line < kLines; ++line)
    {
        EXPECT_NE(said.find("(9 line " + std::to_string(line) + ')'), std::string::npos) << line;
    }
}

TEST_F(ThrottleTest, OnlyTheBeginningOfTheTextIsTold)
{
    const std::string a(199, 'a');
    const std::pair<std::string, std::string> cases[] = {
        {"one\ntwo\n", "one"},
        {"\r\n", ""},
        {a + "bc", a + "b"},
        {a + "\xC3\xA4", a},
        {a.substr(2) + "\xE2\x82\xAC" + "b", a.substr(2) + "\xE2\x82\xAC"}};
    for (const auto& [text, told] : cases)
    {
        EXPECT_EQ(SayTimes(4, 0, text), "+++-");
        EXPECT_EQ(Rest(), "(1 " + told + ")");
    }
}

TEST_F(ThrottleTest, MayBeSwitchedOff)
{
    for (const auto& [lines, seconds] : {std::pair{0U, 10U}, {3U, 0U}})
    {
        m_throttle->Start(lines, seconds);
        EXPECT_EQ(SayTimes(100, 0, "same"), std::string(100, '+'));
    }
}

TEST(TextHashTest, ChangesWithEveryByte)
{
    size_t texts = 0;
    std::set<uint64_t> halves[2]; // either alone would do for so few
    const auto add = [&](std::string_view text)
    {
        const TextHash hash = HashText(text);
        EXPECT_EQ(hash, HashText(std::string(text))); // of the text, not of where it is
        halves[0].insert(hash.first);
        halves[1].insert(hash.second);
        ++texts;
    };
    for (size_t length = 0; length < 70; ++length)
    {
        std::string text(length, '\0'); // lengths count, too
        add(text);
        for (char& byte : text)
        {
            for (const int bit : {0, 3, 7})
            {
                byte = static_cast<char>(byte ^ (1 << bit));
                add(text);
                byte = static_cast<char>(byte ^ (1 << bit));
            }
        }
    }
    EXPECT_EQ(halves[0].size(), texts);
    EXPECT_EQ(halves[1].size(), texts);
}

} // namespace
} // namespace tsypr::test
