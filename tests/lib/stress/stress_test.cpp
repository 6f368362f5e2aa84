// Many processes with many threads, all writing one log, which is rotated meanwhile, and changing one preference file.
// TESSARY_STRESS_SECONDS says for how long.
#include "lib/misc/clock.h"
#include "lib/string/dictionary_file.h"
#include "lib/user/preference_file.h"
#include "tests/lib/child_process.h"
#include "tests/lib/log/log_files.h"

#include <array>
#include <cstdio>
#include <memory>

namespace tsypr::test
{
namespace
{

constexpr int kProcesses = 8;
constexpr int kThreads = 8;
constexpr int kLinesBetweenPreferences = 200;
constexpr uint32_t kLockMs = 120'000;
constexpr std::string_view kKept = "# This comment stays.\r\nkept = \"x\"\r\ndamaged\r\n";

std::string KeyOf(int process, int thread)
{
    return "counter." + std::to_string(process) + '.' + std::to_string(thread);
}

// What follows the numbers in the lines of a thread: some have short lines, some such on the heap.
std::string FillerOf(int thread)
{
    return std::string(static_cast<size_t>(thread) * 100, static_cast<char>('a' + thread));
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
    const std::string filler = FillerOf(thread);
    while (!written.failed && MonotonicMicroseconds() < end)
    {
        for (int i = 0; i < kLinesBetweenPreferences; ++i)
        {
            LogWrite(kLogInfo, "stress %d %d %d %s\n", process, thread, written.lines, filler.c_str());
            ++written.lines;
        }
        const std::string value = std::to_string(written.preference + 1);
        Dictionary read;
        written.failed = !SetPreferenceInFile(preferences.c_str(), key, value, kLockMs).Ok() ||
                         !LoadDictionary(preferences.c_str(), read).Ok() || read.GetText(key, "") != value;
        written.preference += written.failed ? 0 : 1;
    }
}

// Takes the lines of all files, of which each thread's must be complete and in order; how many files there are.
size_t ReadLogs(const std::filesystem::path& log, std::array<std::array<int, kThreads>, kProcesses>& next)
{
    for (const std::string& line : ReadRotated(log))
    {
        const size_t message = std::min(line.find("stress "), line.size());
        unsigned process = kProcesses;
        unsigned thread = 0;
        const int fields = std::sscanf(line.c_str() + message, "stress %u %u", &process, &thread);
        if (fields != 2 || process >= kProcesses || thread >= kThreads)
        {
            ADD_FAILURE() << "none of ours: " << line;
            break;
        }
        const std::string expected = "stress " + std::to_string(process) + ' ' + std::to_string(thread) + ' ' +
                                     std::to_string(next[process][thread]++) + ' ' + FillerOf(static_cast<int>(thread));
        if (line.substr(message) != expected)
        {
            ADD_FAILURE() << line << " in place of " << expected;
            break;
        }
    }
    return RotatedFiles(log).size();
}

TEST(Stress, NothingIsLost)
{
    const char* wanted = std::getenv("TESSARY_STRESS_SECONDS");
    const int seconds = wanted != nullptr ? std::atoi(wanted) : 5;
    const ScratchFolder scratch("stress");
    std::ofstream(scratch / "preferences.conf", std::ios::binary) << kKept;
    InThreads(kProcesses,
              [&](int process)
              {
                  ChildProcess child({"write", Utf8(scratch.path), std::to_string(process), std::to_string(seconds)});
                  EXPECT_EQ(child.Wait(), 0);
              });
    std::array<std::array<int, kThreads>, kProcesses> lines{};
    const size_t files = ReadLogs(scratch / "shared.log", lines);
    EXPECT_GT(files, 1U) << "nothing was rotated";
    Dictionary preferences;
    size_t damaged = 0;
    const std::string path = Utf8(scratch / "preferences.conf");
    ASSERT_TRUE(LoadDictionary(path.c_str(), preferences, nullptr, &damaged).Ok());
    EXPECT_EQ(preferences.Size(), size_t{kProcesses * kThreads} + 1);
    EXPECT_EQ(damaged, 1U);
    EXPECT_EQ(ReadLines(path)[0], "# This comment stays.\r");
    int all = 0;
    int changes = 0;
    for (int process = 0; process < kProcesses; ++process)
    {
        std::ifstream counts(scratch / ("counts-" + std::to_string(process)));
        for (int thread = 0; thread < kThreads; ++thread)
        {
            Written written;
            counts >> written.lines >> written.preference;
            EXPECT_EQ(lines[static_cast<size_t>(process)][static_cast<size_t>(thread)], written.lines) << process;
            EXPECT_GT(written.preference, 0);
            EXPECT_EQ(preferences.GetInt64(KeyOf(process, thread), -1), written.preference);
            all += written.lines;
            changes += written.preference;
        }
    }
    std::printf("%d lines in %zu files, %d changes of preferences in %d s\n", all, files, changes, seconds);
}

} // namespace

// Writes into FOLDER as process N for so many seconds, then says in FOLDER/counts-N what it has written.
int RunChild(const std::vector<std::string>& arguments)
{
    const std::string& folder = arguments[1];
    const int process = std::atoi(arguments[2].c_str());
    if (!LogStart("stress",
                  Settings(folder + "/shared.log", {{kLogRotateBytesKey, "1048576"}, {kLogKeepRotatedKey, "999"}})))
    {
        return 1;
    }
    std::array<Written, kThreads> written;
    const int64_t end = MonotonicMicroseconds() + std::stoll(arguments[3]) * 1'000'000;
    InThreads(kThreads,
              [&](int thread) {
                  WriteLines(folder + "/preferences.conf", process, thread, end, written[static_cast<size_t>(thread)]);
              });
    std::ofstream counts(folder + "/counts-" + arguments[2]);
    for (const Written& one : written)
    {
        counts << one.lines << ' ' << one.preference << '\n';
    }
    LogStop();
    return std::ranges::any_of(written, &Written::failed) ? 3 : 0;
}

} // namespace tsypr::test

int main(int argc, char** argv)
{
    return tsypr::test::RunTestsOrChild(argc, argv);
}
