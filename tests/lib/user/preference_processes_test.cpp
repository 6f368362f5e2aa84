// Processes that die while they change a preference file. What several do at the same time: tests/lib/stress.
#include "lib/file/append_file.h"
#include "lib/file/read_file.h"
#include "lib/string/dictionary_file.h"
#include "lib/user/preference_file.h"
#include "tests/lib/child_process.h"
#include "tests/lib/user/user_test.h"

#include <random>

namespace tsypr::test
{
namespace
{

constexpr std::string_view kStart = "# This comment stays.\r\n\r\nkept = \"\\\\server\\x\" \r\ndamaged\r\n";

TEST(PreferenceProcesses, DyingLosesNothing)
{
    const char* const wanted = std::getenv("TESSARY_KILLS"); // NOLINT(concurrency-mt-unsafe)
    const int kills = wanted != nullptr ? std::atoi(wanted) : 20;
    const ScratchFolder scratch("preference-kills");
    const std::string file = Utf8(scratch / "preferences.conf");
    std::ofstream(scratch / "preferences.conf", std::ios::binary) << kStart;
    std::mt19937 random(4711); // NOLINT(cert-msc51-cpp): the same in every run
    for (int kill = 0; kill < kills; ++kill)
    {
        const std::filesystem::path acknowledged = scratch / ("acknowledged-" + std::to_string(kill));
        KillAtWork({"count-for-ever", file, Utf8(acknowledged)}, acknowledged, static_cast<int>(random() % 8000));
        std::string text;
        ASSERT_TRUE(ReadWholeFile(file.c_str(), kMaxKeyValueFileBytes, text));
        EXPECT_TRUE(text.starts_with(kStart)) << kill;
        Dictionary values;
        EXPECT_EQ(values.Load(text), 1U);
        EXPECT_GE(values.GetInt64("count", 0), std::stoll(ReadLines(acknowledged).back()));
    }
}

} // namespace

// Counts up for ever and notes every number once it is written.
int RunChild(const std::vector<std::string>& arguments)
{
    AppendFile notes;
    notes.Open(arguments[2].c_str());
    for (unsigned count = 1;; ++count)
    {
        const std::string number = std::to_string(count);
        if (!SetPreferenceInFile(arguments[1].c_str(), "count", number, 60'000).Ok() ||
            !notes.Append((number + "\n").data(), number.size() + 1))
        {
            return 1;
        }
    }
}

} // namespace tsypr::test

int main(int argc, char** argv)
{
    return tsypr::test::RunTestsOrChild(argc, argv);
}
