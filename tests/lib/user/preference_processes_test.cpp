// One preference file in the hands of several processes, which may die at any moment.
#include "lib/file/append_file.h"
#include "lib/string/dictionary_file.h"
#include "lib/user/preference_file.h"
#include "tests/lib/child_process.h"
#include "tests/lib/user/user_test.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <random>

namespace tsypr::test
{
namespace
{

constexpr char kStart[] = "# This comment stays.\r\n\r\nkept = \"\\\\server\\x\" \r\ndamaged\r\n";
constexpr uint32_t kLockMs = 60'000;

unsigned NumberFrom(const char* variable, unsigned otherwise)
{
    const char* text = std::getenv(variable); // NOLINT(concurrency-mt-unsafe)
    return text != nullptr ? static_cast<unsigned>(std::atoi(text)) : otherwise;
}

// Whether everything is still there that was not changed.
bool IsWhole(const std::string& file)
{
    std::ifstream stream(std::filesystem::path(std::u8string(file.begin(), file.end())), std::ios::binary);
    std::string start(sizeof(kStart) - 1, '\0');
    stream.read(start.data(), static_cast<std::streamsize>(start.size()));
    return start == kStart;
}

// Counts a key of its own up until the time is over. Returns whether it always found what it had written.
bool CountUp(const std::string& file, const std::string& key, std::chrono::steady_clock::time_point end)
{
    for (int64_t count = 1; count == 1 || std::chrono::steady_clock::now() < end; ++count)
    {
        if (!SetPreferenceInFile(file.c_str(), key, std::to_string(count), kLockMs).Ok())
        {
            return false;
        }
        Dictionary values;
        size_t damaged = 0;
        if (!LoadDictionary(file.c_str(), values, nullptr, &damaged).Ok() || damaged != 1 ||
            values.GetInt64(key, 0) != count)
        {
            return false;
        }
    }
    return true;
}

int CountInThreads(const std::string& file, const std::string& name, unsigned milliseconds)
{
    constexpr int kThreads = 8;
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    std::atomic<int> failures = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
    {
        threads.emplace_back([&, i] { failures += CountUp(file, name + "." + std::to_string(i), end) ? 0 : 1; });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    return failures;
}

// Counts up for ever and notes every number once it is written.
int CountForEver(const std::string& file, const std::string& acknowledged)
{
    AppendFile notes;
    notes.Open(acknowledged.c_str());
    for (unsigned count = 1;; ++count)
    {
        const std::string number = std::to_string(count);
        if (!SetPreferenceInFile(file.c_str(), "count", number, kLockMs).Ok() ||
            !notes.Append((number + "\n").data(), number.size() + 1))
        {
            return 1;
        }
    }
}

TEST(PreferenceProcesses, LoseNothing)
{
    constexpr int kProcesses = 8;
    const ScratchFolder scratch("preference-processes");
    const std::string file = Utf8(scratch / "preferences.conf");
    std::ofstream(scratch / "preferences.conf", std::ios::binary) << kStart;
    const std::string milliseconds = std::to_string(NumberFrom("TESSARY_STRESS_MS", 1500));
    std::vector<std::unique_ptr<ChildProcess>> processes;
    for (int i = 0; i < kProcesses; ++i)
    {
        processes.push_back(std::make_unique<ChildProcess>(
            std::vector<std::string>{"--child", "count", file, std::to_string(i), milliseconds}));
    }
    for (const auto& process : processes)
    {
        EXPECT_EQ(process->Wait(), 0);
    }
    EXPECT_TRUE(IsWhole(file));
    Dictionary values;
    EXPECT_TRUE(LoadDictionary(file.c_str(), values).Ok());
    EXPECT_EQ(values.Size(), kProcesses * 8U + 1);
    int64_t writes = 0;
    for (const auto& [key, value] : values)
    {
        writes += values.GetInt64(key, 0);
    }
    RecordProperty("writes", std::to_string(writes));
    EXPECT_GE(writes, kProcesses * 8);
}

TEST(PreferenceProcesses, DyingLosesNothing)
{
    const unsigned kills = NumberFrom("TESSARY_KILLS", 20);
    const ScratchFolder scratch("preference-kills");
    const std::string file = Utf8(scratch / "preferences.conf");
    std::ofstream(scratch / "preferences.conf", std::ios::binary) << kStart;
    std::mt19937 random(4711); // NOLINT(cert-msc51-cpp): the same in every run
    for (unsigned kill = 0; kill < kills; ++kill)
    {
        const std::filesystem::path acknowledged = scratch / ("acknowledged-" + std::to_string(kill));
        ChildProcess child({"--child", "count-for-ever", file, Utf8(acknowledged)});
        std::error_code ignored;
        while (!std::filesystem::exists(acknowledged) || std::filesystem::file_size(acknowledged, ignored) == 0)
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 8000));
        child.Kill();
        ASSERT_TRUE(IsWhole(file)) << kill;
        Dictionary values;
        size_t damaged = 0;
        ASSERT_TRUE(LoadDictionary(file.c_str(), values, nullptr, &damaged).Ok());
        EXPECT_EQ(damaged, 1U);
        EXPECT_GE(values.GetInt64("count", 0), std::stoll(ReadLines(acknowledged).back()));
    }
}

// What a child process does that is started with these arguments; its exit code.
int RunChild(const std::vector<std::string>& arguments)
{
    if (arguments[0] == "count")
    {
        return CountInThreads(arguments[1], arguments[2], static_cast<unsigned>(std::stoi(arguments[3])));
    }
    return CountForEver(arguments[1], arguments[2]);
}

} // namespace
} // namespace tsypr::test

// With "--child" this is one of the processes that the tests start.
int main(int argc, char** argv)
{
    if (argc > 2 && std::string(argv[1]) == "--child")
    {
        return tsypr::test::RunChild({argv + 2, argv + argc});
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
