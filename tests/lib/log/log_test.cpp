#include "lib/log/log.h"

#include "lib/log/log_settings.h"
#include "lib/misc/process.h"
#include "lib/string/format.h"
#include "lib/unicode/codeset.h"
#include "tests/lib/child_process.h"
#include "tests/lib/log/log_files.h"

#include <gmock/gmock.h>

#include <regex>

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

// The numbers in the lines.
std::string NumbersIn(const std::filesystem::path& file)
{
    std::string all;
    for (const std::string& line : ReadLines(file))
    {
        all += line.substr(line.find('<') + 1, 1);
    }
    return all;
}

// Disabled levels are not even formatted: reading the text would be the end.
void WriteAtEachLevel(int enabled)
{
    for (int level = -1; level < kLogDebug1 + 3; ++level)
    {
        const bool writes = level >= kLogAudit && level <= enabled;
        EXPECT_TRUE(level < kLogAudit || LogEnabled(level) == writes) << level;
        LogWrite(level, "<%d>%s", level, writes ? "" : reinterpret_cast<const char*>(1));
    }
}

TEST_F(LogTest, LevelsAreNamedAndMayChangeAtAnyTime)
{
    constexpr const char* kNames[] = {
        "audit", "Panic", "ERROR", "warning", "notice", "info", "verbose", "trivia", "debug", "debug1"};
    std::string expected;
    for (int level = kLogAudit; level <= kLogDebug1; ++level)
    {
        WriteAtEachLevel(-1);
        ASSERT_TRUE(Start(Utf8(m_file), kNames[level]));
        WriteAtEachLevel(level);
        LogStop();
        expected += std::string("0123456789").substr(0, static_cast<size_t>(level) + 1);
    }
    EXPECT_FALSE(LogSetLevel(kLogInfo)); // not running
    ASSERT_TRUE(Start(Utf8(m_file), "info"));
    const int levels[] = {kLogDebug1, kLogErrorLevel, -1, kLogDebug1 + 1, kLogAudit, kLogInfo};
    for (const int level : levels)
    {
        const bool known = level >= kLogAudit && level <= kLogDebug1;
        EXPECT_EQ(LogSetLevel(level), known) << level;
        WriteAtEachLevel(known ? level : kLogErrorLevel);
    }
    LogStop();
    EXPECT_EQ(NumbersIn(m_file), expected + "0123456789" + "012" + "012" + "012" + "0" + "012345");
}

TEST_F(LogTest, StartsAndStopsAgainAndAgain)
{
    constexpr const char* kUnknown[] = {"loud", "", "debug2", "debu", "debugs", " debug", "9", "trace"}; // info
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

TEST_F(LogTest, IdenticalLinesAreFolded)
{
    ASSERT_TRUE(
        LogStart("test", Settings(Utf8(m_file), {{kLogThrottleLinesKey, "3"}, {kLogThrottleSecondsKey, "3600"}})));
    const auto say = [](int) // the same line in all threads
    {
        for (int i = 0; i < 5; ++i)
        {
            LogWrite(kLogErrorLevel, "<%s failed with %d>\n", "Open", 5);
        }
    };
    InThreads(4, say);
    LogWrite(kLogErrorLevel, "<%s failed with %d>\n", "Open", 6);
    LogStop();
    std::string all;
    for (const std::string& line : ReadLines(m_file))
    {
        all += line.substr(25, 6) + line.substr(std::min(line.find('<'), line.find("message"))) + '|';
    }
    const std::string open = "error <Open failed with 5>|";
    EXPECT_EQ(all,
              open + open + open + "error <Open failed with 6>|" +
                  "error message repeated 17 times in 3600 s: <Open failed with 5>|");
}

std::string Show(const LogSettings& s)
{
    std::string text;
    FormatString(text, "%d %s %d %u ", s.level, s.file == nullptr ? "none" : "file", s.ownFile ? 1 : 0, s.rotateBytes);
    std::string more;
    FormatString(more, "%u %u %u %u", s.keepRotated, s.keepFiles, s.throttleLines, s.throttleSeconds);
    return text + more;
}

TEST(LogSettingsTest, WhatIsNoNumberInTheRangeCountsAsMissing)
{
    constexpr char kDefaults[] = "5 none 0 10485760 5 50 500 10";
    EXPECT_EQ(Show(ReadLogSettings(Dictionary())), kDefaults);
    const char* const keys[] = {kLogOwnFileKey,
                                kLogRotateBytesKey,
                                kLogKeepRotatedKey,
                                kLogKeepFilesKey,
                                kLogThrottleLinesKey,
                                kLogThrottleSecondsKey};
    for (const char* text : {"", " ", "x", "-1", "1x", "1.5", "4294967296", "99999999999999999999"})
    {
        Dictionary wrong;
        wrong.Set(kLogFileLevelKey, text);
        for (const char* key : keys)
        {
            wrong.Set(key, text);
        }
        EXPECT_EQ(Show(ReadLogSettings(wrong)), kDefaults) << text;
    }
    const char* const values[][6] = {{"1", "4294967295", "999", "0", "0", "86400"},
                                     {"2", "0x100", "1000", " 7 ", "+8", "86401"}};
    const char* const read[] = {"9 file 1 4294967295 999 0 0 86400", "9 file 0 256 5 7 8 10"};
    for (size_t i = 0; i < std::size(read); ++i)
    {
        Dictionary settings = Settings("a.log");
        for (size_t key = 0; key < std::size(keys); ++key)
        {
            settings.Set(keys[key], values[i][key]);
        }
        EXPECT_EQ(Show(ReadLogSettings(settings)), read[i]);
    }
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
