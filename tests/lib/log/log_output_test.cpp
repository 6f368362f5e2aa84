#include "lib/log/log_output.h"

#include "lib/file/fault_plan.h"
#include "lib/misc/clock.h"
#include "tests/lib/log/log_files.h"

#include <gmock/gmock.h>

namespace tsypr::test
{
namespace
{

using testing::ElementsAre;

// An output in a file of its own, by a clock that the test sets.
class LogOutputTest : public testing::Test
{
protected:
    void Open(uint32_t rotateBytes = 0, uint32_t keepRotated = 5, bool ownFile = false)
    {
        m_output = std::make_unique<LogOutput>(
            "test", LogSettings{kLogInfo, m_name.c_str(), ownFile, rotateBytes, keepRotated, 0, 0, 0});
    }

    void Write(const std::string& line)
    {
        m_output->Write(line + '\n', m_now);
    }

    void MakeFiles(std::initializer_list<const char*> names) const
    {
        for (const char* name : names)
        {
            std::ofstream(m_folder / name, std::ios::binary) << name << '\n';
        }
    }

    // The lines of the file, without what stands in front of those of the log itself.
    std::vector<std::string> Lines() const
    {
        std::vector<std::string> lines = ReadLines(m_file);
        for (std::string& line : lines)
        {
            line = line.substr(line.find("LogWrite, ") == std::string::npos ? 0 : line.find("LogWrite, "));
        }
        return lines;
    }

    ScratchFolder m_folder{"log-output"};
    std::filesystem::path m_file = m_folder / "test.log";
    std::string m_name = Utf8(m_file);
    int64_t m_now = UtcNowMilliseconds();
    std::unique_ptr<LogOutput> m_output;
};

TEST_F(LogOutputTest, FullFilesMoveOnAndTheOldestGoes)
{
    for (const bool ownFile : {false, true})
    {
        for (const uint32_t keep : {0U, 1U, 3U})
        {
            std::filesystem::remove_all(m_folder.path);
            std::filesystem::create_directories(m_folder.path);
            Open(100, keep, ownFile);
            for (int i = 100; i < 200; ++i)
            {
                Write("line " + std::to_string(i) + " of 20 bytes"); // with its end 21: four fit
            }
            Write(std::string(300, 'x')); // too long for any file
            m_output->Close(m_now);
            const std::vector<std::filesystem::path> files = RotatedFiles(m_file);
            ASSERT_EQ(files.size(), keep + 1);
            int next = 200 - 4 * static_cast<int>(keep);
            for (size_t i = 0; i < keep; ++i)
            {
                EXPECT_EQ(std::filesystem::file_size(files[i]), 84U);
                for (const std::string& line : ReadLines(files[i]))
                {
                    EXPECT_EQ(line, "line " + std::to_string(next++) + " of 20 bytes");
                }
            }
            EXPECT_EQ(next, 200);
            EXPECT_THAT(Lines(), ElementsAre(std::string(300, 'x')));
            EXPECT_EQ(std::filesystem::exists(m_name + ".lock"), !ownFile);
        }
    }
}

TEST_F(LogOutputTest, FilesBeyondTheKeptOnesGoWhenFewerAreKept)
{
    MakeFiles({"test.log", "test.log.1", "test.log.2", "test.log.3", "test.log.4"});
    Open(10, 2);
    Write("new");
    m_output->Close(m_now);
    EXPECT_THAT(ReadRotated(m_file), ElementsAre("test.log.1", "test.log", "new"));
}

TEST_F(LogOutputTest, AViewerDoesNotStopIt)
{
    Open(10, 5);
    Write("one line");
    {
        const std::ifstream viewer(m_file); // in a way that forbids renaming it
        FileFaultPlan plan;
#ifndef _WIN32
        plan.Fail(FileOperation::Rename, FileError::AccessDenied, 1, FileFaultPlan::kAlways);
#endif
        const auto attempts = [&plan] { return plan.Seen(FileOperation::Lock); }; // one for each
        Write("two");
        EXPECT_EQ(attempts(), 1U);
        for (int second = 0; second < 120; ++second)
        {
            m_now += 1000;
            Write("and " + std::to_string(second));
        }
        EXPECT_GE(attempts(), 7U); // after 1, 2, 4, ... 60 s
        EXPECT_LE(attempts(), 8U);
    }
    EXPECT_THAT(RotatedFiles(m_file), testing::SizeIs(1));
    EXPECT_THAT(Lines(), testing::SizeIs(122)); // nothing is lost
    m_now += 60'000;
    Write("free");
    EXPECT_THAT(Lines(), ElementsAre("free"));
    EXPECT_THAT(ReadRotated(m_file), testing::SizeIs(123));
}

TEST_F(LogOutputTest, AChainThatIsBlockedInTheMiddleKeepsItsOrder)
{
    MakeFiles({"test.log.1", "test.log.2", "test.log"});
    Open(10, 5);
    {
        FileFaultPlan plan;
        plan.Fail(FileOperation::Rename, FileError::AccessDenied, 2, 1);
        Write("first");
    }
    m_now += 1000;
    Write("second");
    m_output->Close(m_now);
    EXPECT_THAT(ReadRotated(m_file), ElementsAre("test.log.2", "test.log.1", "test.log", "first", "second"));
    EXPECT_EQ(RotatedFiles(m_file).size(), 4U);
}

TEST_F(LogOutputTest, AFullDiskLosesLinesAndTellsHowMany)
{
    Open();
    Write("before");
    {
        FileFaultPlan plan;
        plan.Fail(FileOperation::Write, FileError::DiskFull, 1, FileFaultPlan::kAlways);
        for (int i = 0; i < 100; ++i)
        {
            m_now += 30;
            Write("lost");
        }
        EXPECT_EQ(plan.Seen(FileOperation::Write), 3U); // once in a second
    }
    Write("lost as well");
    m_now += 1000;
    Write("after");
    Write("and on");
    EXPECT_THAT(Lines(), ElementsAre("before", "LogWrite, 101 lines were lost.", "after", "and on"));
}

TEST_F(LogOutputTest, HalfALineIsEndedAndTheEndTellsWhatIsLost)
{
    Open();
    for (const size_t bytes : {4U, 0U})
    {
        FileFaultPlan plan;
        plan.Shorten(FileOperation::Write, bytes);
        Write("cut off");
        m_now += bytes == 0 ? 0 : 1000;
        Write("after");
    }
    m_output->Close(m_now);
    EXPECT_THAT(Lines(), ElementsAre("cut ", "LogWrite, 1 lines were lost.", "after", "LogWrite, 2 lines were lost."));
}

TEST_F(LogOutputTest, WhatCannotBeOpenedAtFirstIsTriedAgain)
{
    const std::filesystem::path folder = m_folder / "a" / "b";
    m_file = folder / "test.log";
    m_name = Utf8(m_file);
    Open();
    Write("lost");
    m_now += 1000;
    Write("lost as well");
    std::filesystem::create_directories(folder);
    Write("too early");
    m_now += 1000;
    Write("there");
    EXPECT_THAT(Lines(), ElementsAre("LogWrite, 3 lines were lost.", "there"));
}

TEST_F(LogOutputTest, FilesThatAreRemovedRenamedOrEmptiedAreNoticed)
{
    for (const bool ownFile : {false, true})
    {
        std::filesystem::remove(m_file);
        Open(0, 5, ownFile);
        Write("old");
        std::filesystem::rename(m_file, m_folder / "moved.log");
        Write("old, too");
        m_now += 1000;
        Write("new");
        EXPECT_THAT(ReadLines(m_folder / "moved.log"), ElementsAre("old", "old, too"));
        EXPECT_THAT(Lines(), ElementsAre("new"));
        std::filesystem::resize_file(m_file, 0);
        m_now += 1000;
        Write("newer"); // the file was seen in its place just before
        EXPECT_THAT(Lines(), ElementsAre("newer"));
#ifndef _WIN32 // Wine lets nobody see that an open file has been deleted
        std::filesystem::remove(m_file);
        Write("gone");
        m_now += 1000;
        Write("there");
        EXPECT_THAT(Lines(), ElementsAre("LogWrite, 2 lines were lost.", "there"));
#endif
        m_output->Close(m_now);
    }
}

TEST_F(LogOutputTest, AnotherOnesRotationIsFollowed)
{
    Open(10);
    Write("ours");
    LogOutput other("test", {kLogInfo, m_name.c_str(), false, 10, 5, 0, 0, 0});
    other.Write("theirs\n", m_now); // moves our file away
    Write("late");                  // our file is not full as far as we know
    Write("new, and full");         // it is, but no longer there; nor does this fit into the new one
    Write("x");
    m_output->Close(m_now);
    other.Close(m_now);
    EXPECT_THAT(ReadRotated(m_file), ElementsAre("ours", "late", "theirs", "new, and full", "x"));
}

} // namespace
} // namespace tsypr::test
