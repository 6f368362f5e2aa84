// The log in several processes, and in processes that are killed.
#include "tests/lib/child_process.h"
#include "tests/lib/log/log_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <random>
#include <thread>

namespace tsypr::test
{
namespace
{

void WaitFor(const std::filesystem::path& file, uintmax_t bytes)
{
    std::error_code missing;
    for (int i = 0; i < 20'000; ++i)
    {
        const uintmax_t size = std::filesystem::file_size(file, missing);
        if (!missing && size >= bytes)
        {
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    FAIL() << "the other process does not get on";
}

TEST(LogProcessesTest, SeveralProcessesRotateOneFileAndLoseNothing)
{
    constexpr int kProcesses = 3;
    constexpr int kLines = 1500;
    const ScratchFolder folder("log-processes");
    const std::filesystem::path file = folder / "shared.log";
    std::vector<std::unique_ptr<ChildProcess>> children;
    for (int i = 0; i < kProcesses; ++i)
    {
        children.push_back(std::make_unique<ChildProcess>(std::vector<std::string>{
            "--child", "write-lines", Utf8(file), std::to_string(i), std::to_string(kLines), "16384"}));
    }
    for (const auto& child : children)
    {
        EXPECT_EQ(child->Wait(), 0);
    }
    int next[kProcesses] = {};
    for (const std::string& line : ReadRotated(file))
    {
        const char* text = line.c_str() + line.find('<') + 1;
        const int process = std::atoi(text);
        ASSERT_TRUE(process >= 0 && process < kProcesses) << line;
        ASSERT_TRUE(line.ends_with('<' + std::to_string(process) + ' ' + std::to_string(next[process]++) + '>'))
            << line;
    }
    EXPECT_THAT(next, testing::Each(kLines));
    EXPECT_GE(RotatedFiles(file).size(), 5U); // some 230 KB; while one process rotates, the others go on for a moment
}

// Every line that a process knew to be written is there, whenever it is killed.
TEST(LogProcessesTest, KilledProcessesLoseNoAcknowledgedLine)
{
    constexpr int kKills = 200;
    constexpr int kAtOnce = 4;
    std::mt19937 random(20240305); // NOLINT(cert-msc51-cpp): the same at every run
    const ScratchFolder folder("log-kill");
    size_t acknowledgedInAll = 0;
    for (int round = 0; round < kKills / kAtOnce; ++round)
    {
        std::vector<std::unique_ptr<ChildProcess>> children;
        const auto path = [&](int child, const char* kind)
        { return folder / (std::to_string(round) + '-' + std::to_string(child) + kind); };
        for (int i = 0; i < kAtOnce; ++i)
        {
            children.push_back(std::make_unique<ChildProcess>(std::vector<std::string>{
                "--child", "write-for-ever", Utf8(path(i, ".log")), Utf8(path(i, ".ack")), i % 2 == 0 ? "0" : "1"}));
        }
        for (int i = 0; i < kAtOnce; ++i)
        {
            WaitFor(path(i, ".ack"), 1);
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 3000));
            children[static_cast<size_t>(i)]->Kill();
        }
        for (int i = 0; i < kAtOnce; ++i)
        {
            const uintmax_t acknowledged = std::filesystem::file_size(path(i, ".ack"));
            const std::vector<std::string> lines = ReadRotated(path(i, ".log"));
            ASSERT_GE(lines.size(), acknowledged);
            for (size_t number = 0; number < acknowledged; ++number)
            {
                ASSERT_TRUE(lines[number].ends_with(" <" + std::to_string(number) + ">")) << lines[number];
            }
            acknowledgedInAll += acknowledged;
        }
        for (const auto& entry : std::filesystem::directory_iterator(folder.path))
        {
            std::filesystem::remove(entry.path());
        }
    }
    EXPECT_GT(acknowledgedInAll, size_t{10} * kKills);
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

std::string Names(const ScratchFolder& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path))
    {
        names.push_back(Utf8(entry.path().filename()));
    }
    std::ranges::sort(names);
    std::string all;
    for (const std::string& name : names)
    {
        all += name + ' ';
    }
    return all;
}

std::string LeftAfterStart(const std::vector<std::string>& files, const char* name, const char* keep, const char* tag)
{
    const ScratchFolder folder("log-retention");
    MakeFiles(folder, files);
    EXPECT_TRUE(LogStart(tag, Settings(Utf8(folder / name), {{kLogKeepFilesKey, keep}})));
    LogStop();
    return Names(folder);
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

TEST(LogRetentionTest, AHundredAtOnce)
{
    std::vector<std::string> files;
    for (int i = 100; i < 250; ++i)
    {
        files.push_back("print_ui_" + std::to_string(i) + ".log");
    }
    const std::string left = LeftAfterStart(files, "print_ui_9.log", "10", "ui");
    EXPECT_EQ(std::ranges::count(left, ' '), 51);
    EXPECT_TRUE(left.starts_with("print_ui_200.log ")) << left;
}

TEST(LogRetentionTest, AnotherProcessesFileStays)
{
    const ScratchFolder folder("log-held");
    MakeFiles(folder, {"print_ui_1.log", "print_ui_2.log"});
    ChildProcess holder({"--child", "hold-open", Utf8(folder / "print_ui_1.log"), Utf8(folder / "ready")});
    for (int i = 0; i < 10'000 && !std::filesystem::exists(folder / "ready"); ++i)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    for (const char* left : {"print_ui_1.log print_ui_9.log ready ", "print_ui_9.log ready "})
    {
        ASSERT_TRUE(LogStart("ui", Settings(Utf8(folder / "print_ui_9.log"), {{kLogKeepFilesKey, "1"}})));
        LogStop();
        EXPECT_EQ(Names(folder), left);
        holder.Kill(); // the second time nobody has it
    }
}

} // namespace
} // namespace tsypr::test
