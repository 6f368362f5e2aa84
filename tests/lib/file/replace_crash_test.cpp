// Processes that die while they replace a file.
#include "tests/lib/child_process.h"
#include "tests/lib/file/file_test.h"

#include <atomic>
#include <random>

namespace tsypr::test
{
namespace
{

size_t CountEntries(const std::string& folder)
{
    std::vector<DirectoryEntry> entries;
    return ListDirectory(folder.c_str(), entries).Ok() ? entries.size() : 0;
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

// The number that all lines of the contents have; 0 when they differ.
unsigned NumberIn(const std::string& contents)
{
    const std::string line = contents.substr(0, contents.find('\n') + 1);
    std::string expected;
    while (!line.empty() && expected.size() < 20'000)
    {
        expected += line;
    }
    return !line.empty() && contents == expected ? static_cast<unsigned>(std::stoul(line)) : 0;
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
                      const unsigned number = NumberIn(Contents(path));
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

} // namespace
} // namespace tsypr::test
