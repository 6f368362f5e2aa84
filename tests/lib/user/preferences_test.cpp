#include "lib/user/preferences.h"

#include "lib/file/append_file.h"
#include "lib/file/fault_plan.h"
#include "lib/file/file_lock.h"
#include "lib/file/read_file.h"
#include "lib/string/dictionary_file.h"
#include "tests/lib/child_process.h"
#include "tests/lib/user/user_test.h"

#include <random>

namespace tsypr::test
{
namespace
{

std::string Value(const char* key)
{
    std::string value;
    return ReadPreference(key, value) ? value : "<none>" + value;
}

// Both files in folders of the test's own, and a store that is started.
struct Store
{
    Store()
    {
        PreferencesStart();
    }
    ~Store()
    {
        PreferencesStop();
    }
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    const ScratchFolder scratch{"preferences"};
    const MachineSetting machine{scratch.path};
    const ScopedVariable user{kUserVariable, scratch / "user"};
    const std::filesystem::path machineFile = scratch / "preferences.conf";
    const std::filesystem::path userFile = scratch / "user" / kUserFolder / "preferences.conf";
};

TEST(Preferences, UserWins)
{
    const Store store;
    store.scratch.Write(store.machineFile, "both = \"machine\"\nmachine = \"1\"\n");
    store.scratch.Write(store.userFile, "both = \"user\"\nuser = \"2\"\n");
    EXPECT_EQ(Value("both") + Value("machine") + Value("user") + Value("x"), "user12<none>");
    // What others write is seen when it is asked for.
    store.scratch.Write(store.userFile, "user = \"3\"\n");
    EXPECT_EQ(Value("both") + Value("user"), "user2");
    EXPECT_TRUE(PreferencesReload().Ok());
    EXPECT_EQ(Value("both") + Value("user"), "machine3");
    PreferencesStop();
    EXPECT_EQ(Value("both"), "<none>");
    EXPECT_EQ(PreferencesReload().error, FileError::InvalidArgument);
    std::filesystem::remove(store.machineFile);
    PreferencesStart();
    EXPECT_EQ(Value("both") + Value("user"), "<none>3");
}

TEST(Preferences, ReloadReportsWhatIsWrong)
{
    const Store store;
    store.scratch.Write(store.machineFile, "a = \"1\"\nb = 2\n");
    store.scratch.Write(store.userFile, "\n\nc\nd=\"4\"\n");
    PreferenceReport report;
    EXPECT_TRUE(PreferencesReload(&report).Ok());
    ASSERT_EQ(report.damagedCount, 2U);
    ASSERT_EQ(report.damaged.size(), 2U);
    EXPECT_EQ(report.damaged[0].scope, PreferenceScope::Machine);
    EXPECT_EQ(report.damaged[0].line, 2U);
    EXPECT_EQ(report.damaged[1].scope, PreferenceScope::User);
    EXPECT_EQ(report.damaged[1].line, 3U);

    store.scratch.Write(store.machineFile, "a = \"9\"\n");
    store.scratch.Write(store.userFile, std::string(1024 * 1024 + 1, '\n'));
    EXPECT_EQ(PreferencesReload(&report).error, FileError::TooLarge);
    EXPECT_EQ(report.user.error, FileError::TooLarge);
    EXPECT_TRUE(report.machine.Ok());
    EXPECT_EQ(Value("a") + Value("d"), "14"); // as before
    {
        FileFaultPlan plan;
        plan.Fail(FileOperation::Read, FileError::AccessDenied);
        EXPECT_EQ(PreferencesReload().error, FileError::AccessDenied);
    }
    std::filesystem::remove(store.userFile);
    EXPECT_TRUE(PreferencesReload().Ok());
    EXPECT_EQ(Value("a") + Value("d"), "9<none>");
}

TEST(Preferences, ChangesAreSeenAndKeepTheRest)
{
    const Store store;
    store.scratch.Write(store.machineFile, "# kept\r\na = \"1\"\r\nbroken\r\n");
    EXPECT_EQ(Value("a"), "1");
    EXPECT_TRUE(WritePreference(PreferenceScope::Machine, "a", "2").Ok());
    EXPECT_TRUE(WritePreference(PreferenceScope::User, "a", "\xC3\xA4\n").Ok()); // makes folder and file
    EXPECT_EQ(Value("a"), "\xC3\xA4\n");
    EXPECT_EQ(store.scratch.Read(store.machineFile), "# kept\r\na = \"2\"\r\nbroken\r\n");
    EXPECT_EQ(store.scratch.Read(store.userFile), "a = \"\xC3\xA4\\<0A>\"\n");
    EXPECT_TRUE(RemovePreference(PreferenceScope::User, "a").Ok());
    EXPECT_TRUE(RemovePreference(PreferenceScope::User, "a").Ok());
    EXPECT_EQ(Value("a"), "2");
    EXPECT_EQ(store.scratch.Read(store.userFile), "");
    EXPECT_EQ(WritePreference(PreferenceScope::Machine, "a=b", "2").error, FileError::InvalidArgument);
    const ScopedVariable none(kUserVariable, "");
    EXPECT_EQ(WritePreference(PreferenceScope::User, "a", "2").error, FileError::NotFound);
}

TEST(PreferenceFile, FailuresLeaveItAsItWas)
{
    const ScratchFolder scratch("preference-file");
    const std::filesystem::path file = scratch / "file.conf";
    const std::string path = Utf8(file);
    const auto set = [&path](uint32_t lockMs = 5000)
    { return SetPreferenceInFile(path.c_str(), "a", "1", lockMs).error; };

    EXPECT_EQ(SetPreferenceInFile(nullptr, "a", "1").error, FileError::InvalidArgument);
    EXPECT_EQ(SetPreferenceInFile("", "a", "1").error, FileError::InvalidArgument);
    EXPECT_EQ(SetPreferenceInFile(path.c_str(), "", "1").error, FileError::InvalidArgument);
    EXPECT_EQ(SetPreferenceInFile(Utf8(scratch / "none" / "file").c_str(), "a", "1").error, FileError::NotFound);
    EXPECT_TRUE(RemovePreferenceFromFile(path.c_str(), "a").Ok());
    EXPECT_FALSE(std::filesystem::exists(file));

    constexpr std::string_view kOld = "# old\nb = \"2\"";
    scratch.Write(file, kOld);
    for (const FileOperation operation :
         {FileOperation::Read, FileOperation::Write, FileOperation::Flush, FileOperation::Rename})
    {
        FileFaultPlan plan;
        plan.Fail(operation, FileError::DiskFull, 1, FileFaultPlan::kAlways);
        EXPECT_EQ(set(), FileError::DiskFull);
    }
    EXPECT_EQ(scratch.Read(file), kOld);
    {
        FileLock other;
        ASSERT_TRUE(other.Acquire((path + ".lock").c_str(), LockMode::Exclusive, 0).Ok());
        EXPECT_EQ(set(20), FileError::TimedOut);
    }
    for (const std::string& text : {std::string(1024 * 1024 - 7, '\n'), std::string("\xFF\xFE#\0", 4)})
    {
        scratch.Write(file, text);
        EXPECT_EQ(set(), text.size() > 4 ? FileError::TooLarge : FileError::Other);
        EXPECT_TRUE(scratch.Read(file) == text);
    }
    scratch.Write(file, kOld);
    EXPECT_EQ(set(), FileError::None);
    EXPECT_EQ(scratch.Read(file), std::string(kOld) + "\na = \"1\"\n");

    Dictionary values;
    size_t damaged = 0;
    EXPECT_TRUE(LoadDictionary(path.c_str(), values, nullptr, &damaged).Ok());
    EXPECT_TRUE(values.Set("c", "3"));
    EXPECT_TRUE(SaveDictionary(path.c_str(), values).Ok());
    EXPECT_EQ(scratch.Read(file), "a = \"1\"\nb = \"2\"\nc = \"3\"\n");
    EXPECT_TRUE(values.Set("long", std::string(1024 * 1024, 'x')));
    EXPECT_EQ(SaveDictionary(path.c_str(), values).error, FileError::TooLarge);
    EXPECT_TRUE(values.Set("=", ""));
    EXPECT_EQ(SaveDictionary(path.c_str(), values).error, FileError::InvalidArgument);
    EXPECT_EQ(LoadDictionary(Utf8(scratch / "none").c_str(), values).error, FileError::NotFound);
}

constexpr std::string_view kStart = "# This comment stays.\r\n\r\nkept = \"\\\\server\\x\" \r\ndamaged\r\n";

// What several processes do at the same time: tests/lib/stress.
TEST(PreferenceFile, DyingProcessesLoseNothing)
{
    const char* const wanted = std::getenv("TESSARY_KILLS"); // NOLINT(concurrency-mt-unsafe)
    const int kills = wanted != nullptr ? std::atoi(wanted) : 20;
    const ScratchFolder scratch("preference-kills");
    const std::string file = Utf8(scratch / "preferences.conf");
    scratch.Write(file, kStart);
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
