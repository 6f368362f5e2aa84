#include "lib/log/log.h"

#include "lib/log/log_settings.h"
#include "lib/misc/process.h"
#include "lib/unicode/codeset.h"
#include "tests/lib/log/log_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
#include <thread>

#ifndef _WIN32
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace tsypr::test
{
namespace
{

bool Start(const std::string& file, const char* level = "debug1")
{
    return LogStart("test", Settings(file, {{kLogFileLevelKey, level}, {kLogOwnFileKey, "1"}}));
}

// A log in a file of its own.
class LogTest : public testing::Test
{
protected:
    ~LogTest() override
    {
        LogStop();
    }

    ScratchFolder m_folder{"log"};
    std::filesystem::path m_file = m_folder / "test.log";
};

TEST_F(LogTest, WritesOneLinePerMessage)
{
    const std::string text = std::string(100'000, 'a') + std::string(200'000, 'b');
    ASSERT_TRUE(Start(Utf8(m_file)));
    LogWrite(kLogErrorLevel, "%s, error %d.\n", "Here", 5);
    LogWrite(kLogDebug1, "There, %S", Utf16String{0xC4, 'm', 't', 'e', 'r'}.c_str()); // gets its line end
    LogWrite(kLogAudit, "%s", "");
    LogWrite(kLogInfo, "%S%s", Utf16String(text.begin(), text.end()).c_str(), text.c_str());
    const std::regex time(R"(20\d\d-[01]\d-[0-3]\d [0-2]\d:[0-5]\d:[0-5]\d\.\d{3}Z )");
    const std::string origin = " " + std::to_string(CurrentProcessId()) + ":" + std::to_string(CurrentThreadId()) + " ";
    std::string endings;
    for (const std::string& line : ReadLines(m_file))
    {
        EXPECT_TRUE(std::regex_match(line.substr(0, 25), time)) << line;
        endings += line.substr(25) + "|";
    }
    EXPECT_EQ(endings,
              "error" + origin + "Here, error 5.|debug1" + origin + "There, \xC3\x84mter|audit" + origin + "|info" +
                  origin + text + text + "|");
}

TEST_F(LogTest, DisabledLevelsAreNotEvenFormatted)
{
    const auto* noText = reinterpret_cast<const char*>(1); // reading it would be the end
    constexpr const char* kNames[] = {
        "audit", "Panic", "ERROR", "warning", "notice", "info", "verbose", "trivia", "debug", "debug1"};
    for (int level = kLogAudit; level <= kLogDebug1; ++level)
    {
        LogWrite(kLogAudit, "%s", noText);
        ASSERT_TRUE(Start(Utf8(m_file), kNames[level]));
        LogWrite(level, "at %s", kNames[level]);
        for (int above = level + 1; above < kLogDebug1 + 3; ++above)
        {
            EXPECT_FALSE(LogEnabled(above));
            LogWrite(above, "%s", noText);
        }
        LogWrite(-1, "%s", noText);
        LogStop();
        EXPECT_FALSE(LogEnabled(kLogAudit));
    }
    EXPECT_EQ(ReadLines(m_file).size(), 10U);
}

TEST_F(LogTest, StartsAndStopsAgainAndAgain)
{
    constexpr const char* kUnknown[] = {
        "loud", "", "debug2", "debu", "debugs", " debug", "9", "trace"}; // count as info
    for (size_t i = 0; i < 100; ++i)
    {
        LogStop();
        LogStop();
        LogWrite(kLogAudit, "stopped\n");
        ASSERT_TRUE(Start(Utf8(m_file), kUnknown[i % std::size(kUnknown)]));
        EXPECT_FALSE(Start(Utf8(m_folder / "other.log"))); // the running log stays as it is
        LogWrite(kLogInfo, "written\n");
        LogWrite(kLogVerboseLevel, "disabled\n");
    }
    LogStop();
    EXPECT_EQ(ReadLines(m_file).size(), 100U);
    EXPECT_FALSE(std::filesystem::exists(m_folder / "other.log"));
    EXPECT_FALSE(LogStart(nullptr, Dictionary()));
    EXPECT_FALSE(LogStart("", Dictionary()));
    EXPECT_FALSE(LogEnabled(kLogAudit));
    EXPECT_TRUE(LogStart("test", Dictionary())); // no file at all
    LogWrite(kLogInfo, "lost\n");
}

TEST_F(LogTest, UnusableFilesDoNotDisturb)
{
    // More than one folder is missing; it is a folder; the name is none; natively a disk without room.
    for (const std::string name : {"none/none/test.log", "", "a*?<b>", "\xFF\xFE.log", "/dev/full"})
    {
        EXPECT_TRUE(Start(name.starts_with('/') ? name : Utf8(m_folder.path) + "/" + name)) << name;
        LogWrite(kLogErrorLevel, "%s\n", "lost");
        LogStop();
    }
}

TEST_F(LogTest, TheLevelMayChangeAtAnyTime)
{
    EXPECT_FALSE(LogSetLevel(kLogInfo)); // not running
    ASSERT_TRUE(Start(Utf8(m_file), "info"));
    const int levels[] = {kLogDebug1, kLogErrorLevel, -1, kLogDebug1 + 1, kLogAudit, kLogInfo};
    for (const int level : levels)
    {
        EXPECT_EQ(LogSetLevel(level), level >= kLogAudit && level <= kLogDebug1) << level;
        for (int written = kLogAudit; written <= kLogDebug1; ++written)
        {
            LogWrite(written, "<%d>", written);
        }
    }
    LogStop();
    std::string all;
    for (const std::string& line : ReadLines(m_file))
    {
        all += line.substr(line.find('<') + 1, 1);
    }
    EXPECT_EQ(all,
              "0123456789"
              "012"
              "012"
              "012"
              "0"
              "012345");
}

// The message of a line, behind time, level, process and thread.
std::string MessageOf(const std::string& line)
{
    size_t place = 0;
    for (int blanks = 0; blanks < 4; ++blanks)
    {
        place = line.find(' ', place) + 1;
    }
    return line.substr(place);
}

TEST_F(LogTest, IdenticalLinesAreFolded)
{
    ASSERT_TRUE(
        LogStart("test", Settings(Utf8(m_file), {{kLogThrottleLinesKey, "3"}, {kLogThrottleSecondsKey, "3600"}})));
    const auto say = [](const char* text)
    {
        for (int i = 0; i < 5; ++i)
        {
            LogWrite(kLogErrorLevel, "%s, failed with %d.\n", text, 5);
        }
    };
    say("Open");
    LogWrite(kLogErrorLevel, "%s, failed with %d.\n", "Open", 6);
    LogSetLevel(kLogDebug);
    say("Close");
    LogStop();
    std::vector<std::string> messages;
    for (const std::string& line : ReadLines(m_file))
    {
        messages.push_back(MessageOf(line));
        EXPECT_EQ(line.substr(25, 6), "error "); // also of the folded ones
    }
    const std::string open = "Open, failed with 5.";
    const std::string close = "Close, failed with 5.";
    EXPECT_THAT(messages,
                testing::ElementsAre(open,
                                     open,
                                     open,
                                     "Open, failed with 6.",
                                     "message repeated 2 times in 3600 s: " + open,
                                     close,
                                     close,
                                     close,
                                     "message repeated 2 times in 3600 s: " + close));
}

// By default, a call that fails in a loop leaves 500 lines and one.
TEST_F(LogTest, ALoopOfFailuresDoesNotFillTheDisk)
{
    ASSERT_TRUE(Start(Utf8(m_file)));
    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t)
    {
        threads.emplace_back(
            []
            {
                for (int i = 0; i < 2500; ++i)
                {
                    LogWrite(kLogErrorLevel, "%s, the printer does not answer.\n", "Print");
                }
            });
    }
    threads.clear(); // waits for them
    LogStop();
    const std::vector<std::string> lines = ReadLines(m_file);
    EXPECT_EQ(lines.size(), 501U);
    EXPECT_EQ(MessageOf(lines.back()), "message repeated 9500 times in 10 s: Print, the printer does not answer.");
}

TEST(LogSettingsTest, WhatIsNoNumberInTheRangeCountsAsMissing)
{
    const char* const wrong[] = {"", " ", "x", "-1", "1x", "1.5", "4294967296", "99999999999999999999"};
    for (const char* text : wrong)
    {
        Dictionary dictionary;
        for (const char* key : {kLogFileLevelKey,
                                kLogOwnFileKey,
                                kLogRotateBytesKey,
                                kLogKeepRotatedKey,
                                kLogKeepFilesKey,
                                kLogThrottleLinesKey,
                                kLogThrottleSecondsKey})
        {
            dictionary.Set(key, text);
        }
        for (const LogSettings& settings : {ReadLogSettings(dictionary), ReadLogSettings(Dictionary())})
        {
            EXPECT_EQ(settings.level, kLogInfo) << text;
            EXPECT_EQ(settings.file, nullptr);
            EXPECT_FALSE(settings.ownFile);
            EXPECT_EQ(settings.rotateBytes, 10'485'760U);
            EXPECT_EQ(settings.keepRotated, 5U);
            EXPECT_EQ(settings.keepFiles, 50U);
            EXPECT_EQ(settings.throttleLines, 500U);
            EXPECT_EQ(settings.throttleSeconds, 10U);
        }
    }
    const LogSettings most = ReadLogSettings(Settings("a.log",
                                                      {{kLogOwnFileKey, "1"},
                                                       {kLogRotateBytesKey, "4294967295"},
                                                       {kLogKeepRotatedKey, "999"},
                                                       {kLogKeepFilesKey, "0"},
                                                       {kLogThrottleLinesKey, "0"},
                                                       {kLogThrottleSecondsKey, "86400"}}));
    EXPECT_TRUE(most.ownFile);
    EXPECT_EQ(most.rotateBytes, 4'294'967'295U);
    EXPECT_EQ(most.keepRotated, 999U);
    EXPECT_EQ(most.keepFiles, 0U);
    EXPECT_EQ(most.throttleLines, 0U);
    EXPECT_EQ(most.throttleSeconds, 86'400U);
    EXPECT_EQ(ReadLogSettings(Settings("", {{kLogKeepRotatedKey, "1000"}})).keepRotated, 5U);
    EXPECT_EQ(ReadLogSettings(Settings("", {{kLogThrottleSecondsKey, "86401"}})).throttleSeconds, 10U);
}

// A line of a thread; short lines and such on the heap.
std::string LineOf(int thread, int number)
{
    const std::string filler(static_cast<size_t>(thread) * 150, static_cast<char>('a' + thread));
    return "<" + std::to_string(thread) + " " + std::to_string(number) + " " + filler + ">";
}

TEST_F(LogTest, LinesOfManyThreadsNeitherMixNorGetLost)
{
    constexpr int kThreads = 16;
    constexpr int kLines = 500;
    ASSERT_TRUE(Start(Utf8(m_file)));
    std::vector<std::jthread> threads;
    for (int t = 0; t < kThreads; ++t)
    {
        threads.emplace_back(
            [t]
            {
                for (int i = 0; i < kLines; ++i)
                {
                    LogWrite(kLogInfo, "%s\n", LineOf(t, i).c_str());
                }
            });
    }
    threads.clear(); // waits for them
    int next[kThreads] = {};
    for (const std::string& line : ReadLines(m_file))
    {
        const size_t begin = line.find('<');
        const int t = std::atoi(line.c_str() + begin + 1);
        ASSERT_TRUE(t >= 0 && t < kThreads) << line;
        ASSERT_EQ(line.substr(begin), LineOf(t, next[t]++)); // each thread's lines in their order
    }
    EXPECT_THAT(next, testing::Each(kLines));
}

TEST_F(LogTest, NothingIsLostWhenTheProcessIsGoneAtOnce)
{
    const auto logAndDie = [this]
    {
        Start(Utf8(m_file));
        for (int i = 0; i < 1000; ++i)
        {
            LogWrite(kLogInfo, "<%d>\n", i);
        }
        std::_Exit(42); // without a chance to write anything that it still holds
    };
    EXPECT_EXIT(logAndDie(), testing::ExitedWithCode(42), "");
    const std::vector<std::string> lines = ReadLines(m_file);
    ASSERT_EQ(lines.size(), 1000U);
    EXPECT_TRUE(lines.back().ends_with(" <999>")) << lines.back();
}

#ifndef _WIN32
// A thread stands still inside a write, with the log's lock, as a thread does that was ended there.
[[noreturn]] void CallTheLogWhileItsLockIsHeld(const std::filesystem::path& pipe)
{
    alarm(20);
    const int reader = mkfifo(pipe.c_str(), 0600) == 0 ? open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC) : -1;
    if (reader < 0 || !Start(Utf8(pipe)))
    {
        _exit(1);
    }
    std::thread([] { LogWrite(kLogInfo, "%s", std::string(1 << 20, 'x').c_str()); }).detach(); // more than a pipe takes
    int waiting = 0;
    while (waiting < 0x10000 && ioctl(reader, FIONREAD, &waiting) == 0)
    {
        std::this_thread::yield();
    }
    LogPrepareForProcessEnd();
    _exit(Start(Utf8(pipe)) ? 2 : 0); // asks for the lock, finds the log running
}

TEST_F(LogTest, NobodyWaitsForALockAtTheEndOfTheProcess)
{
    EXPECT_EXIT(CallTheLogWhileItsLockIsHeld(m_folder / "pipe"), testing::ExitedWithCode(0), "");
}
#endif

} // namespace
} // namespace tsypr::test
