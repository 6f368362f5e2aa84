// Many processes with many threads, all writing one log, which is rotated meanwhile, and changing one preference file.
// TESSARY_STRESS_SECONDS says for how long.
#include "lib/log/log.h"
#include "lib/misc/clock.h"
#include "lib/string/dictionary_file.h"
#include "lib/user/preference_file.h"
#include "tests/lib/child_process.h"
#include "tests/lib/test_files.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace tsypr::test
{
namespace
{

constexpr int kProcesses = 8;
constexpr int kThreads = 8;
constexpr int kLinesBetweenPreferences = 200;
constexpr uint32_t kLockMs = 120'000;

std::string KeyOf(int process, int thread)
{
    return "counter." + std::to_string(process) + '.' + std::to_string(thread);
}

struct Written
{
    int lines = 0;
    int preference = 0; // the last value that was acknowledged
    bool failed = false;
};

// Writes until the time is over.
void WriteLines(const std::string& preferences, int process, int thread, int64_t end, Written& written)
{
    const std::string key = KeyOf(process, thread);
    while (!written.failed && MonotonicMicroseconds() < end)
    {
        for (int i = 0; i < kLinesBetweenPreferences; ++i)
        {
            LogWrite(kLogInfo, "stress %d %d %d\n", process, thread, written.lines);
            ++written.lines;
        }
        const std::string value = std::to_string(written.preference + 1);
        written.failed = !SetPreferenceInFile(preferences.c_str(), key, value, kLockMs).Ok();
        written.preference += written.failed ? 0 : 1;
    }
}

// One of the processes: writes, then says in FOLDER/counts-PROCESS what it has written.
int RunChild(const std::string& folder, int process, int seconds)
{
    Dictionary settings;
    settings.Set(kLogFileNameKey, folder + "/shared.log");
    settings.Set(kLogRotateBytesKey, "2097152");
    settings.Set(kLogKeepRotatedKey, "999");
    if (!LogStart("stress", settings))
    {
        return 1;
    }
    std::array<Written, kThreads> written;
    std::vector<std::thread> threads;
    const int64_t end = MonotonicMicroseconds() + int64_t{seconds} * 1'000'000;
    for (int thread = 0; thread < kThreads; ++thread)
    {
        threads.emplace_back(
            [&, thread]
            { WriteLines(folder + "/preferences.conf", process, thread, end, written[static_cast<size_t>(thread)]); });
    }
    std::ofstream counts(folder + "/counts-" + std::to_string(process));
    for (size_t thread = 0; thread < threads.size(); ++thread)
    {
        threads[thread].join();
        counts << written[thread].lines << ' ' << written[thread].preference << '\n';
    }
    LogStop();
    return std::ranges::any_of(written, &Written::failed) ? 3 : 0;
}

// Whether every number was seen, and how often in all.
struct Seen
{
    std::vector<bool> numbers;
    int lines = 0;
};

using SeenLines = std::array<std::array<Seen, kThreads>, kProcesses>;

// Returns the lines that are none of ours.
std::vector<std::string> ReadLog(const std::filesystem::path& file, SeenLines& seen)
{
    std::vector<std::string> strange;
    for (const std::string& line : ReadLines(file))
    {
        const size_t message = line.find("stress ");
        unsigned process = 0;
        unsigned thread = 0;
        unsigned number = 0;
        if (message == std::string::npos ||
            std::sscanf(line.c_str() + message, "stress %u %u %u", &process, &thread, &number) != 3 ||
            process >= kProcesses || thread >= kThreads)
        {
            strange.push_back(line);
            continue;
        }
        Seen& one = seen[process][thread];
        one.numbers.resize(std::max<size_t>(one.numbers.size(), number + 1));
        one.numbers[number] = true;
        ++one.lines;
    }
    return strange;
}

void ReadLogs(const ScratchFolder& scratch, SeenLines& seen, int& files)
{
    for (const auto& entry : std::filesystem::directory_iterator(scratch.path))
    {
        const std::string name = entry.path().filename().string();
        if (name.starts_with("shared.log") && !name.ends_with(".lock"))
        {
            EXPECT_EQ(ReadLog(entry.path(), seen), std::vector<std::string>()) << name;
            ++files;
        }
    }
}

TEST(Stress, NothingIsLost)
{
    const char* wanted = std::getenv("TESSARY_STRESS_SECONDS");
    const int seconds = wanted != nullptr ? std::atoi(wanted) : 5;
    const ScratchFolder scratch("stress");
    std::vector<std::unique_ptr<ChildProcess>> children;
    for (int process = 0; process < kProcesses; ++process)
    {
        children.push_back(std::make_unique<ChildProcess>(
            std::vector<std::string>{"--child", Utf8(scratch.path), std::to_string(process), std::to_string(seconds)}));
    }
    for (const auto& child : children)
    {
        EXPECT_EQ(child->Wait(), 0);
    }
    SeenLines seen;
    int files = 0;
    ReadLogs(scratch, seen, files);
    Dictionary preferences;
    ASSERT_TRUE(LoadDictionary(Utf8(scratch / "preferences.conf").c_str(), preferences).Ok());
    EXPECT_EQ(preferences.Size(), size_t{kProcesses * kThreads});
    int all = 0;
    int changes = 0;
    for (int process = 0; process < kProcesses; ++process)
    {
        std::ifstream counts(scratch / ("counts-" + std::to_string(process)));
        for (int thread = 0; thread < kThreads; ++thread)
        {
            Written written;
            counts >> written.lines >> written.preference;
            const Seen& one = seen[static_cast<size_t>(process)][static_cast<size_t>(thread)];
            EXPECT_EQ(one.lines, written.lines) << process << ':' << thread;
            EXPECT_EQ(std::ranges::count(one.numbers, true), written.lines) << process << ':' << thread;
            EXPECT_GT(written.preference, 0);
            EXPECT_EQ(preferences.GetInt64(KeyOf(process, thread), -1), written.preference);
            all += written.lines;
            changes += written.preference;
        }
    }
    EXPECT_GT(files, 1) << "nothing was rotated";
    std::printf("%d lines in %d files, %d changes of preferences in %d s\n", all, files, changes, seconds);
}

} // namespace
} // namespace tsypr::test

int main(int argc, char** argv)
{
    if (argc == 5 && std::string(argv[1]) == "--child")
    {
        return tsypr::test::RunChild(argv[2], std::atoi(argv[3]), std::atoi(argv[4]));
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
