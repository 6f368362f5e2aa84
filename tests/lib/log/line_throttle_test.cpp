#include "lib/log/line_throttle.h"

#include "tests/lib/log/log_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

    void TakeRest()
    {
        RepeatedLine line;
        while (m_throttle->TakeAny(line))
        {
            Note(line);
        }
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
        m_said.clear();
        for (int i = 0; i < step.times; ++i)
        {
            Say(step.now, step.text);
        }
        EXPECT_EQ(m_said, step.said) << step.now;
    }
    m_said.clear();
    TakeRest();
    TakeRest();
    EXPECT_EQ(m_said, "(1 same)");
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
        m_said.clear();
        Say(i / 4, "line " + std::to_string(i));
        ASSERT_EQ(m_said, "+") << i;
        if (i % 8 == 0)
        {
            m_said.clear();
            Say(i / 4, "failed");
            admitted += m_said;
        }
    }
    EXPECT_EQ(admitted, "+++" + std::string(2497, '-'));
    m_said.clear();
    TakeRest();
    EXPECT_EQ(m_said, "(2497 failed)");
}

// More lines that come too often than there are places: each loses its place at times, and then tells what it held.
TEST_F(ThrottleTest, NothingIsForgottenWhenPlacesAreScarce)
{
    constexpr int kLines = 400;
    constexpr int kRounds = 12;
    for (int line = 0; line < kLines; ++line)
    {
        for (int round = 0; round < kRounds; ++round)
        {
            Say(line, "line " + std::to_string(line));
        }
    }
    TakeRest();
    EXPECT_EQ(std::ranges::count(m_said, '+'), 3 * kLines);
    EXPECT_EQ(std::ranges::count(m_said, '-'), 9 * kLines);
    std::set<std::string> told;
    for (size_t place = m_said.find('('); place != std::string::npos; place = m_said.find('(', place + 1))
    {
        told.insert(m_said.substr(place, m_said.find(')', place) - place));
    }
    EXPECT_EQ(told.size(), static_cast<size_t>(kLines));
    EXPECT_TRUE(told.contains("(9 line 0"));
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
        m_said.clear();
        for (int i = 0; i < 4; ++i)
        {
            Say(0, text);
        }
        TakeRest();
        EXPECT_EQ(m_said, "+++-(1 " + told + ")");
    }
}

TEST_F(ThrottleTest, MayBeSwitchedOff)
{
    for (const auto& [lines, seconds] : {std::pair{0U, 10U}, {3U, 0U}})
    {
        m_throttle->Start(lines, seconds);
        m_said.clear();
        for (int i = 0; i < 100; ++i)
        {
            Say(0, "same");
        }
        EXPECT_EQ(m_said, std::string(100, '+'));
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
