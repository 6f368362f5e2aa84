#include "lib/log/log.h"

#include "lib/misc/process.h"
#include "lib/unicode/codeset.h"
#include "tests/lib/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <regex>
#include <thread>

#ifdef _WIN32
#include <windows.h>
#else
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
    Dictionary settings;
    settings.Set(kLogFileNameKey, file);
    settings.Set(kLogFileLevelKey, level);
    return LogStart("test", settings);
}

// A log in a file of its own.
class LogTest : public testing::Test
{
protected:
    LogTest() : m_folder("log"), m_file(m_folder / "test.log") {}
    ~LogTest() override
    {
        LogStop();
    }

    ScratchFolder m_folder;
    std::filesystem::path m_file;
};

TEST(LogLevels, HaveNames)
{
    const std::pair<const char*, int> cases[] = {
        {"audit", 0},   {"panic", 1}, {"error", 2},  {"warning", 3}, {"notice", 4}, {"info", 5},   {"verbose", 6},
        {"trivia", 7},  {"debug", 8}, {"debug1", 9}, {"Info", 5},    {"DEBUG1", 9}, {"trace", -1}, {"", -1},
        {"debug2", -1}, {"inf", -1},  {"infos", -1}, {" info", -1},  {"5", -1},     {nullptr, -1}};
    for (const auto& [name, level] : cases)
    {
        EXPECT_EQ(LogLevelFromName(name), level) << (name != nullptr ? name : "null");
    }
}

TEST_F(LogTest, WritesOneLinePerMessage)
{
    const Utf16Unit printer[] = {0x00DC, 'b', 'e', 'r', 0};
    ASSERT_TRUE(Start(Utf8(m_file)));
    LogWrite(kLogErrorLevel, "%s, error %d.\n", "Here", 5);
    LogWrite(kLogDebug1, "%s, %S", "There", printer); // gets its line end
    LogWrite(kLogAudit, "%s", "");
    const std::vector<std::string> lines = ReadLines(m_file);
    ASSERT_EQ(lines.size(), 3U);
    const std::string origin = std::to_string(CurrentProcessId()) + ":" + std::to_string(CurrentThreadId()) + " ";
    const std::string endings[] = {"error " + origin + "Here, error 5.",
                                   "debug1 " + origin +
                                       "There, \xC3\x9C"
                                       "ber",
                                   "audit " + origin};
    for (size_t i = 0; i < lines.size(); ++i)
    {
        const std::regex time(R"(20\d\d-[01]\d-[0-3]\d [0-2]\d:[0-5]\d:[0-5]\d\.\d{3}Z )");
        EXPECT_TRUE(std::regex_match(lines[i].substr(0, 25), time)) << lines[i];
        EXPECT_EQ(lines[i].substr(25), endings[i]);
    }
}

TEST_F(LogTest, DisabledLevelsAreNotEvenFormatted)
{
    const auto* noText = reinterpret_cast<const char*>(1); // reading it would be the end
    LogWrite(kLogAudit, "%s", noText);
    for (int level = kLogAudit; level <= kLogDebug1; ++level)
    {
        constexpr const char* kNames[] = {
            "audit", "panic", "error", "warning", "notice", "info", "verbose", "trivia", "debug", "debug1"};
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
        LogWrite(kLogAudit, "%s", noText);
    }
    EXPECT_EQ(ReadLines(m_file).size(), 10U);
}

TEST_F(LogTest, StartsAndStopsAgainAndAgain)
{
    LogStop();
    for (int i = 0; i < 100; ++i)
    {
        ASSERT_TRUE(Start(Utf8(m_file), i % 2 == 0 ? "loud" : "")); // unknown levels count as info
        EXPECT_FALSE(Start(Utf8(m_folder / "other.log")));          // the running log stays as it is
        LogWrite(kLogInfo, "%d\n", i);
        LogWrite(kLogVerboseLevel, "%d\n", i);
        LogStop();
        LogStop();
        LogWrite(kLogAudit, "%d\n", i);
    }
    EXPECT_EQ(ReadLines(m_file).size(), 100U);
    EXPECT_FALSE(std::filesystem::exists(m_folder / "other.log"));
    EXPECT_FALSE(LogStart(nullptr, Dictionary()));
    EXPECT_FALSE(LogStart("", Dictionary()));
    EXPECT_FALSE(LogEnabled(kLogAudit));
    EXPECT_TRUE(LogStart("test", Dictionary())); // no file at all
    EXPECT_TRUE(LogEnabled(kLogInfo));
    EXPECT_FALSE(LogEnabled(kLogVerboseLevel));
    LogWrite(kLogInfo, "%d\n", 1);
}

TEST_F(LogTest, UnusableFilesDoNotDisturb)
{
    const std::string files[] = {Utf8(m_folder / "none" / "none" / "test.log"), // more than one folder is missing
                                 Utf8(m_folder.Path()),
                                 Utf8(m_folder / "a*?<b>"),
                                 Utf8(m_folder.Path()) + "/\xFF\xFE.log",
                                 "/dev/full", // natively a disk without room
                                 ""};
    for (const std::string& file : files)
    {
        EXPECT_TRUE(Start(file)) << file;
        LogWrite(kLogErrorLevel, "%s\n", "lost");
        LogStop();
    }
}

TEST_F(LogTest, LongMessagesStayWhole)
{
    ASSERT_TRUE(Start(Utf8(m_file)));
    std::string text;
    for (int i = 0; text.size() < 300'000; ++i)
    {
        text += std::to_string(i) + ' ';
    }
    LogWrite(kLogInfo, "<%s>\n", text.c_str());
    LogWrite(kLogInfo, "<%S>\n", Utf16String(text.begin(), text.end()).c_str());
    const std::vector<std::string> lines = ReadLines(m_file);
    ASSERT_EQ(lines.size(), 2U);
    for (const std::string& line : lines)
    {
        EXPECT_TRUE(line.ends_with(" <" + text + ">")); // compared whole; not printed for its length
    }
}

TEST_F(LogTest, LinesOfManyThreadsNeitherMixNorGetLost)
{
    constexpr int kThreads = 16;
    constexpr int kLines = 500;
    ASSERT_TRUE(Start(Utf8(m_file)));
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
    {
        threads.emplace_back(
            [t]
            {
                const std::string filler(static_cast<size_t>(t) * 150,
                                         static_cast<char>('a' + t)); // short and on the heap
                for (int i = 0; i < kLines; ++i)
                {
                    LogWrite(kLogInfo, "<%d %d %s>\n", t, i, filler.c_str());
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    int next[kThreads] = {};
    for (const std::string& line : ReadLines(m_file))
    {
        int t = -1;
        int i = -1;
        const size_t begin = line.find('<');
        ASSERT_NE(begin, std::string::npos) << line;
        ASSERT_EQ(std::sscanf(line.c_str() + begin, "<%d %d ", &t, &i), 2) << line;
        ASSERT_TRUE(t >= 0 && t < kThreads) << line;
        const std::string filler(static_cast<size_t>(t) * 150, static_cast<char>('a' + t));
        ASSERT_EQ(line.substr(begin), "<" + std::to_string(t) + " " + std::to_string(i) + " " + filler + ">");
        ASSERT_EQ(i, next[t]) << "thread " << t; // each thread's lines in their order
        ++next[t];
    }
    EXPECT_EQ(std::count(std::begin(next), std::end(next), kLines), kThreads);
}

// The process is gone at once, without a chance to write anything that it still holds.
[[noreturn]] void KillThisProcess()
{
#ifdef _WIN32
    TerminateProcess(GetCurrentProcess(), 42);
#else
    std::raise(SIGKILL);
#endif
    std::abort();
}

TEST_F(LogTest, NothingIsLostWhenTheProcessIsKilled)
{
#ifdef _WIN32
    const testing::ExitedWithCode killed(42);
#else
    const testing::KilledBySignal killed(SIGKILL);
#endif
    EXPECT_EXIT(
        {
            Start(Utf8(m_file));
            for (int i = 0; i < 1000; ++i)
            {
                LogWrite(kLogInfo, "<%d>\n", i);
            }
            KillThisProcess();
        },
        killed,
        "");
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
