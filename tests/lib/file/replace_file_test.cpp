// Replacing a file's contents: results, faults and crashes at each step, kills, readers meanwhile, leftovers, links.
#include "tests/lib/child_process.h"
#include "tests/lib/file/file_test.h"

#include "lib/file/file.h"
#include "lib/file/temporary_file.h"

#include <algorithm>
#include <atomic>
#include <random>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/stat.h>
#endif

namespace tsypr::test
{
namespace
{

size_t CountEntries(const std::string& folder)
{
    std::vector<DirectoryEntry> entries;
    return ListDirectory(folder.c_str(), entries).Ok() ? entries.size() : 0;
}

TEST(ReplaceFileContents, Results)
{
    const ScratchFolder scratch("replace");
    const std::string base = Utf8(scratch.path);
    const std::string path = base + "/file";
    const std::string large(3'000'000, 'x');
    for (const std::string& contents : {std::string("first"), large, std::string(), std::string("a\0b", 3)})
    {
        EXPECT_EQ(Create(path, contents), FileError::None);
        EXPECT_EQ(Contents(path), contents);
    }
    EXPECT_EQ(Create(path, std::string_view(nullptr, 0)), FileError::None);
    EXPECT_EQ(Create(path, std::string_view(nullptr, 1)), FileError::InvalidArgument);
    EXPECT_EQ(Create(base), FileError::IsADirectory);
    EXPECT_EQ(Create("/"), FileError::IsADirectory);
    EXPECT_EQ(Create(base + "/missing/file"), FileError::NotFound);
    // As long a name as there may be, and one whose temporary name is cut within a character.
    EXPECT_EQ(Create(base + '/' + std::string(255, 'n')), FileError::None);
    std::string foreign = "n";
    while (foreign.size() < 250)
    {
        foreign += "\xE6\x9D\xB1";
    }
    EXPECT_EQ(Create(base + '/' + foreign), FileError::None);
    EXPECT_EQ(CountEntries(base), 3U);
}

TEST(ReplaceFileContents, EveryFaultLeavesOldOrNewWhole)
{
    const ScratchFolder scratch("faults");
    const std::string base = Utf8(scratch.path);
    for (const bool exists : {true, false})
    {
        const std::string path = base + (exists ? "/old" : "/new");
        unsigned seen = 0;
        unsigned step = 0;
        do
        {
            ++step;
            SCOPED_TRACE(step);
            RemoveFile(path.c_str());
            ASSERT_TRUE(!exists || Create(path, "old") == FileError::None);
            const std::string before = Contents(path);
            FileResult result;
            bool flushedFolder = false;
            {
                FileFaultPlan plan;
                plan.Fail(FileOperation::Any, FileError::DiskFull, step);
                result = ReplaceFileContents(path.c_str(), "new contents");
                seen = plan.Seen(FileOperation::Any);
                flushedFolder = plan.Seen(FileOperation::Flush) == 2;
            }
            const bool failed = !result.Ok() && !flushedFolder;
            EXPECT_EQ(Contents(path), failed ? before : "new contents");
            EXPECT_TRUE(result.Ok() || result.error == FileError::DiskFull);
            EXPECT_EQ(Names(base), PathExists(path.c_str()) ? Utf8(std::filesystem::path(path).filename()) + ' ' : "");
        } while (seen >= step);
        EXPECT_GE(step, 7U); // looked, listed, opened, written, flushed, renamed, flushed, closed
        RemoveFile(path.c_str());
    }
}

TEST(ReplaceFileContents, ShortWritesGoOnAndAFullDiskIsNoticed)
{
    const ScratchFolder scratch("short");
    const std::string path = Utf8(scratch / "file");
    ASSERT_EQ(Create(path, "old"), FileError::None);
    FileFaultPlan plan;
    plan.Shorten(FileOperation::Write, 2, 1, 3);
    EXPECT_EQ(Create(path, "0123456789"), FileError::None);
    EXPECT_EQ(Contents(path), "0123456789");
    EXPECT_EQ(plan.Seen(FileOperation::Write), 4U);
    plan.Shorten(FileOperation::Write, 2, 5);
    plan.Fail(FileOperation::Write, FileError::DiskFull, 6);
    EXPECT_EQ(Create(path, "new"), FileError::DiskFull);
    plan.Shorten(FileOperation::Write, 0, 7); // taken for a full disk, not asked for ever
    EXPECT_EQ(Create(path, "new"), FileError::DiskFull);
    EXPECT_EQ(Contents(path), "0123456789");
    EXPECT_EQ(Names(Utf8(scratch.path)), "file ");
}

TEST(ReplaceFileContents, ReadersSeeWholeContentsOnly)
{
    constexpr int kReplacements = 500; // or more, where the readers get on slowly
    const ScratchFolder scratch("readers");
    const std::string path = Utf8(scratch / "file");
    const auto contents = [](int number)
    { return std::string(static_cast<size_t>(1000 + number * 37), static_cast<char>('a' + number % 26)); };
    ASSERT_EQ(Create(path, contents(0)), FileError::None);
    std::atomic<bool> done{false};
    std::atomic<unsigned> reads{0};
    std::atomic<unsigned> torn{0};
    int failed = 0;
    InThreads(3,
              [&](int thread)
              {
                  const auto enough = [&reads](int number) { return number > (reads < 50 ? 10 : 1) * kReplacements; };
                  for (int number = 1; thread == 0 && !enough(number); ++number)
                  {
                      failed += ReplaceFileContents(path.c_str(), contents(number), {1, 2, 10'000}).Ok() ? 0 : 1;
                  }
                  if (thread == 0)
                  {
                      done = true;
                  }
                  while (!done)
                  {
                      const std::string text = Contents(path);
                      const bool whole = text.size() >= 1000 && (text.size() - 1000) % 37 == 0 &&
                                         text == contents(static_cast<int>(text.size() - 1000) / 37);
                      torn += whole ? 0 : 1;
                      ++reads;
                      std::this_thread::sleep_for(std::chrono::milliseconds(1)); // an open file cannot be replaced
                  }
              });
    EXPECT_EQ(failed, 0);
    EXPECT_EQ(torn, 0U);
    EXPECT_GT(reads, 0U);
    EXPECT_EQ(Names(Utf8(scratch.path)), "file ");
}

TEST(ReplaceCrash, AtEachStep)
{
    const ScratchFolder scratch("crash-steps");
    const std::string base = Utf8(scratch.path);
    const std::string path = base + "/file";
    int code = 77;
    unsigned step = 0;
    size_t leftovers = 0;
    for (; code == 77; ++step)
    {
        SCOPED_TRACE(step);
        ASSERT_LT(step, 50U);
        ASSERT_EQ(Create(path, "old"), FileError::None);
        ASSERT_EQ(CountEntries(base), 1U); // what the last one left is gone
        ChildProcess child({"crash-at", path, std::to_string(step + 1)});
        code = child.Wait();
        const std::string contents = Contents(path);
        EXPECT_TRUE(contents == "new" || (contents == "old" && code == 77)) << contents;
        leftovers += CountEntries(base) - 1;
    }
    EXPECT_EQ(code, 0);
    EXPECT_GE(step, 8U);
    EXPECT_GE(leftovers, 3U);
}

// The number that all lines of the file have; 0 when they differ or some are missing.
unsigned NumberIn(const std::string& path)
{
    const std::vector<std::string> lines = ReadLines(path);
    const bool whole =
        Contents(path).size() >= 20'000 && static_cast<size_t>(std::ranges::count(lines, lines[0])) == lines.size();
    return whole ? static_cast<unsigned>(std::stoul(lines[0])) : 0;
}

TEST(ReplaceCrash, KilledTwoHundredTimes)
{
    constexpr int kThreads = 4; // most of the time goes into starting processes
    constexpr int kKills = 50;  // each
    const ScratchFolder scratch("kills");
    std::atomic<size_t> leftovers{0};
    InThreads(kThreads,
              [&](int thread)
              {
                  const std::string base = Utf8(scratch.path) + '/' + std::to_string(thread);
                  const std::string path = base + "/file";
                  const std::string acknowledged = base + "/acknowledged";
                  EXPECT_TRUE(MakeDirectory(base.c_str()).Ok());
                  std::mt19937 random(static_cast<unsigned>(thread));
                  for (int kill = 0; kill < kKills; ++kill)
                  {
                      RemoveFile(acknowledged.c_str());
                      KillAtWork({"replace-for-ever", path, acknowledged},
                                 acknowledged,
                                 1000 + static_cast<int>(random() % 9000));
                      const unsigned number = NumberIn(path);
                      EXPECT_NE(number, 0U);
                      const std::vector<std::string> lines = ReadLines(acknowledged);
                      EXPECT_GE(number, lines.empty() ? ~0UL : std::stoul(lines.back()));
                      leftovers += CountEntries(base) - 2;
                      EXPECT_EQ(Create(path, "whole\n"), FileError::None);
                      EXPECT_EQ(CountEntries(base), 2U);
                  }
              });
    EXPECT_GT(leftovers, 0U); // some were hit in the middle
}

TEST(ReplaceFileContents, OnlyLeftoversOfTheDeadAreRemoved)
{
    const ScratchFolder scratch("leftovers");
    const std::string base = Utf8(scratch.path);
    for (const char* const name :
         {"file.123-4.tmp", "file.999999999-1.tmp", "file.1-.tmp", "file.tmp", "other.1-2.tmp"})
    {
        std::ofstream(scratch / name) << "left over";
    }
    NativePath target;
    ASSERT_EQ(ToNativePath((base + "/file").c_str(), target), 0U);
    Retrier retrier({});
    {
        TemporaryFile living(target, retrier);
        ASSERT_EQ(living.Create({}, false), 0U);
        EXPECT_EQ(Create(base + "/file", "new"), FileError::None);
        EXPECT_EQ(CountEntries(base), 5U);
        ASSERT_EQ(living.Write("living", 6), 0U);
        ASSERT_EQ(living.Commit(true), 0U);
    }
    EXPECT_EQ(Contents(base + "/file"), "living");
    EXPECT_EQ(Names(base), "file file.1-.tmp file.tmp other.1-2.tmp ");
}

#ifdef _WIN32
TEST(ReplaceFileContents, KeepsAttributes)
{
    const ScratchFolder scratch("attributes");
    const std::filesystem::path path = scratch / "file";
    ASSERT_EQ(Create(Utf8(path), "old"), FileError::None);
    ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM));
    const DWORD before = GetFileAttributesW(path.c_str());
    EXPECT_EQ(Create(Utf8(path), "new"), FileError::None);
    EXPECT_EQ(GetFileAttributesW(path.c_str()), before);
    EXPECT_EQ(Contents(Utf8(path)), "new");
}
#else
TEST(ReplaceFileContents, KeepsPermissionsAndLinks)
{
    const ScratchFolder scratch("permissions");
    const std::string base = Utf8(scratch.path);
    ASSERT_EQ(Create(base + "/file", "old"), FileError::None);
    struct stat status = {};
    for (const mode_t mode : {0600U, 0666U, 0755U})
    {
        ASSERT_EQ(chmod((base + "/file").c_str(), mode), 0);
        EXPECT_EQ(Create(base + "/file", "new"), FileError::None);
        ASSERT_EQ(stat((base + "/file").c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, mode);
    }
    ASSERT_TRUE(MakeDirectory((base + "/folder").c_str()).Ok());
    std::filesystem::create_symlink("../file", base + "/folder/link");
    std::filesystem::create_symlink(base + "/folder/link", base + "/linked");
    std::filesystem::create_symlink("not-yet", base + "/dangling");
    std::filesystem::create_symlink("circle", base + "/circle");
    EXPECT_EQ(Create(base + "/linked", "through links"), FileError::None);
    EXPECT_EQ(Contents(base + "/file"), "through links");
    EXPECT_EQ(Create(base + "/dangling", "made"), FileError::None);
    EXPECT_EQ(Contents(base + "/not-yet"), "made");
    EXPECT_EQ(Create(base + "/circle"), FileError::Other);
    for (const char* const link : {"/folder/link", "/linked", "/dangling"})
    {
        EXPECT_TRUE(std::filesystem::is_symlink(base + link)) << link;
    }
    EXPECT_EQ(Names(base + "/folder"), "link ");
    EXPECT_EQ(Create("/dev/full"), FileError::InvalidArgument);
}
#endif

} // namespace
} // namespace tsypr::test
