// The log in several processes, and in processes that are killed.
#include "tests/lib/child_process.h"
#include "tests/lib/log/log_files.h"

#include <gmock/gmock.h>

#include <atomic>
#include <random>

namespace tsypr::test
{
namespace
{

// Every line that a process knew to be written is there, whenever it is killed.
TEST(LogProcessesTest, KilledProcessesLoseNoAcknowledgedLine)
{
    constexpr int kThreads = 4; // most of the time goes into starting processes
    constexpr int kKills = 50;  // each
    const ScratchFolder folder("log-kill");
    std::atomic<uintmax_t> acknowledgedInAll{0};
    InThreads(kThreads,
              [&](int thread)
              {
                  std::mt19937 random(static_cast<unsigned>(thread));
                  for (int kill = 0; kill < kKills; ++kill)
                  {
                      const ScratchFolder own("log-kill/" + std::to_string(thread) + '-' + std::to_string(kill));
                      const std::filesystem::path log = own / "log";
                      const std::filesystem::path notes = own / "acknowledged";
                      KillAtWork({"write-for-ever", Utf8(log), Utf8(notes), kill % 2 == 0 ? "0" : "1"},
                                 notes,
                                 static_cast<int>(random() % 3000));
                      const uintmax_t acknowledged = std::filesystem::file_size(notes);
                      const std::vector<std::string> lines = ReadRotated(log);
                      ASSERT_GE(lines.size(), acknowledged);
                      for (size_t number = 0; number < acknowledged; ++number)
                      {
                          ASSERT_TRUE(lines[number].ends_with(" <" + std::to_string(number) + ">")) << lines[number];
                      }
                      acknowledgedInAll += acknowledged;
                  }
              });
    EXPECT_GT(acknowledgedInAll, uintmax_t{kThreads} * kKills); // more than the one that is waited for
}

// Makes empty files, the first the oldest.
void MakeFiles(const ScratchFolder& folder, const std::vector<std::string>& names)
{
    auto time = std::filesystem::file_time_type::clock::now() - std::chrono::hours(24);
    for (const std::string& name : names)
    {
        std::ofstream(folder / name).close();
        std::filesystem::last_write_time(folder / name, time += std::chrono::minutes(1));
    }
}

std::string LeftAfterStart(const std::vector<std::string>& files, const char* name, const char* keep, const char* tag)
{
    const ScratchFolder folder("log-retention");
    MakeFiles(folder, files);
    EXPECT_TRUE(LogStart(tag, Settings(Utf8(folder / name), {{kLogKeepFilesKey, keep}})));
    LogStop();
    return Names(Utf8(folder.path));
}

TEST(LogRetentionTest, TheOldestOfTheTagGo)
{
    struct Case
    {
        std::vector<std::string> files; // the oldest first
        const char* keep;
        std::string left;
        const char* name = "print_ui_9.log";
        const char* tag = "ui";
    };
    const Case cases[] = {
        {{"print_ui_3.log", "print_ui_1.log", "print_ui_2.log"}, "3", "print_ui_1.log print_ui_2.log print_ui_9.log "},
        {{"print_ui_1.log", "print_ui_2.log"}, "0", "print_ui_1.log print_ui_2.log print_ui_9.log "},
        {{"print_ui_1.log", "print_ui_2.log"}, "-1", "print_ui_1.log print_ui_2.log print_ui_9.log "}, // 50
        {{"print_ui_1.log", "print_ui_1.log.lock", "print_ui_1.log.2", "print_ui_2.log.lock"},
         "1",
         "print_ui_2.log.lock print_ui_9.log "},
        // Not of the tag, or no logs.
        {{"print_uix_1.log", "print_ui.log", "print_pp_1.log", "print_ui_1.txt", "print_ui_1.log.x", "a_ui_1.log"},
         "1",
         "a_ui_1.log print_pp_1.log print_ui.log print_ui_1.log.x print_ui_1.txt print_ui_9.log "
         "print_uix_1.log "},
        // Its own predecessors count, but stay.
        {{"print_ui_9.log.2", "print_ui_9.log.1", "print_ui_1.log"},
         "2",
         "print_ui_9.log print_ui_9.log.1 print_ui_9.log.2 "},
        {{"ui_1.log", "gui_1.log"}, "1", "gui_1.log ui_2.log ", "ui_2.log"},
        {{"a_a_1.log", "a_b_1.log"}, "1", "a_a_2.log a_b_1.log ", "a_a_2.log", "a"},
        // Not named after the tag.
        {{"gui_1.log", "gui_2.log"}, "1", "gui_1.log gui_2.log gui_3.log ", "gui_3.log"},
        {{"my.log.1", "a.log"}, "1", "a.log my.log my.log.1 ", "my.log"},
    };
    for (const Case& example : cases)
    {
        EXPECT_EQ(LeftAfterStart(example.files, example.name, example.keep, example.tag), example.left);
    }
}

TEST(LogRetentionTest, AnotherProcessesFileStays)
{
    const ScratchFolder folder("log-held");
    MakeFiles(folder, {"print_ui_1.log", "print_ui_2.log"});
    ChildProcess holder({"hold-open", Utf8(folder / "print_ui_1.log"), Utf8(folder / "ready")});
    WaitForContents(folder / "ready");
    for (const char* left : {"print_ui_1.log print_ui_9.log ready ", "print_ui_9.log ready "})
    {
        ASSERT_TRUE(LogStart("ui", Settings(Utf8(folder / "print_ui_9.log"), {{kLogKeepFilesKey, "1"}})));
        LogStop();
        EXPECT_EQ(Names(Utf8(folder.path)), left);
        holder.Kill(); // the second time nobody has it
    }
}

} // namespace
} // namespace tsypr::test
