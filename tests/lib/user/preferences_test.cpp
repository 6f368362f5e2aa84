#include "lib/user/preferences.h"

#include "lib/file/fault_plan.h"
#include "lib/file/file_lock.h"
#include "lib/file/read_file.h"
#include "lib/string/dictionary_file.h"
#include "tests/lib/user/user_test.h"

namespace tsypr
{
namespace
{

TEST(Preferences, ReadsLines)
{
    struct Case
    {
        const char* text;
        const char* value; // of the key "a.b"; null: none
        size_t damaged;
    };
    const Case cases[] = {
        {"\t a.b \t=\t \"c\" \t\r\n", "c", 0},
        {"\xEF\xBB\xBF a.b=\"c\"", "c", 0},
        {"# a.b = \"no\"\n\n  # a.b = \"no\"\n \t\r\na.b = \"c\"\n", "c", 0},
        {"a.b = \"1\"\na.b = \"2\"\n", "2", 0},
        {"a.c = \"1\"\nA.B = \"2\"\n", nullptr, 0},
        {R"(a.b = "")", "", 0},
        {R"(a.b = " = # ")", " = # ", 0},
        {R"(a.b = "D:\logs\new.log")", R"(D:\logs\new.log)", 0},
        {R"(a.b = "\"D:\logs\\")", R"("D:\logs\)", 0},
        {R"(a.b = "D:\logs\")", nullptr, 1}, // the quote is escaped, the value has no end
        {"a.b = \"\xE6\x97\xA5\"", "\xE6\x97\xA5", 0},
        {"a.b = c\na.b = \"\na.b = \"c\" d\na.b =\na.b\n = \"c\"\na.b \"c\"", nullptr, 7},
        {"=\nx\na.b = \"1\"\n\"\na.b = 2\n", "1", 4}, // a damaged line takes nothing back
    };
    for (const Case& c : cases)
    {
        Dictionary values;
        EXPECT_EQ(ParsePreferences(c.text, values), c.damaged) << c.text;
        EXPECT_STREQ(values.Get("a.b"), c.value) << c.text;
    }
}

using test::MachineSetting;
using test::ScratchFolder;
using test::Utf8;

std::string Value(const char* key)
{
    std::string value;
    return ReadPreference(key, value) ? value : "<none>" + value;
}

void WriteFile(const std::filesystem::path& path, std::string_view text)
{
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

std::string ReadFile(const std::filesystem::path& path)
{
    std::string text;
    return ReadFileContents(Utf8(path).c_str(), size_t{1} << 30, text).Ok() ? text : "<none>";
}

// Both files in folders of the test's own, and a store that is started.
struct Store
{
    Store()
    {
        test::SetVariable(test::kUserVariable, Utf8(scratch / "user"));
        PreferencesStart();
    }
    ~Store()
    {
        PreferencesStop();
        test::SetVariable(test::kUserVariable, "");
    }
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    const ScratchFolder scratch{"preferences"};
    const MachineSetting setting{scratch.path};
    const std::filesystem::path machineFile = scratch / "preferences.conf";
    const std::filesystem::path userFile = scratch / "user" / test::kUserFolder / "preferences.conf";
};

TEST(Preferences, UserWins)
{
    const Store store;
    WriteFile(store.machineFile, "both = \"machine\"\nmachine = \"1\"\n");
    WriteFile(store.userFile, "both = \"user\"\nuser = \"2\"\n");
    EXPECT_EQ(Value("both") + Value("machine") + Value("user") + Value("x"), "user12<none>");
    // What others write is seen when it is asked for.
    WriteFile(store.userFile, "user = \"3\"\n");
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
    WriteFile(store.machineFile, "a = \"1\"\nb = 2\n");
    WriteFile(store.userFile, "\n\nc\nd=\"4\"\n");
    PreferenceReport report;
    EXPECT_TRUE(PreferencesReload(&report).Ok());
    ASSERT_EQ(report.damagedCount, 2U);
    ASSERT_EQ(report.damaged.size(), 2U);
    EXPECT_EQ(report.damaged[0].scope, PreferenceScope::Machine);
    EXPECT_EQ(report.damaged[0].line, 2U);
    EXPECT_EQ(report.damaged[1].scope, PreferenceScope::User);
    EXPECT_EQ(report.damaged[1].line, 3U);

    WriteFile(store.machineFile, "a = \"9\"\n");
    WriteFile(store.userFile, std::string(1024 * 1024 + 1, '\n'));
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
    WriteFile(store.machineFile, "# kept\r\na = \"1\"\r\nbroken\r\n");
    EXPECT_EQ(Value("a"), "1");
    EXPECT_TRUE(WritePreference(PreferenceScope::Machine, "a", "2").Ok());
    EXPECT_TRUE(WritePreference(PreferenceScope::User, "a", "\xC3\xA4\n").Ok()); // makes folder and file
    EXPECT_EQ(Value("a"), "\xC3\xA4\n");
    EXPECT_EQ(ReadFile(store.machineFile), "# kept\r\na = \"2\"\r\nbroken\r\n");
    EXPECT_EQ(ReadFile(store.userFile), "a = \"\xC3\xA4\\<0A>\"\n");
    EXPECT_TRUE(RemovePreference(PreferenceScope::User, "a").Ok());
    EXPECT_TRUE(RemovePreference(PreferenceScope::User, "a").Ok());
    EXPECT_EQ(Value("a"), "2");
    EXPECT_EQ(ReadFile(store.userFile), "");
    EXPECT_EQ(WritePreference(PreferenceScope::Machine, "a=b", "2").error, FileError::InvalidArgument);
    test::SetVariable(test::kUserVariable, "");
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
    WriteFile(file, kOld);
    for (const FileOperation operation :
         {FileOperation::Read, FileOperation::Write, FileOperation::Flush, FileOperation::Rename})
    {
        FileFaultPlan plan;
        plan.Fail(operation, FileError::DiskFull, 1, FileFaultPlan::kAlways);
        EXPECT_EQ(set(), FileError::DiskFull);
    }
    EXPECT_EQ(ReadFile(file), kOld);
    {
        FileLock other;
        ASSERT_TRUE(other.Acquire((path + ".lock").c_str(), LockMode::Exclusive, 0).Ok());
        EXPECT_EQ(set(20), FileError::TimedOut);
    }
    for (const std::string& text : {std::string(1024 * 1024 - 7, '\n'),
                                    std::string("\xFF\xFE"
                                                "a\0=\0",
                                                6)})
    {
        WriteFile(file, text);
        EXPECT_EQ(set(), text.size() > 6 ? FileError::TooLarge : FileError::Other);
        EXPECT_TRUE(ReadFile(file) == text);
    }
    WriteFile(file, kOld);
    EXPECT_EQ(set(), FileError::None);
    EXPECT_EQ(ReadFile(file), std::string(kOld) + "\na = \"1\"\n");

    Dictionary values;
    size_t damaged = 0;
    EXPECT_TRUE(LoadDictionary(path.c_str(), values, nullptr, &damaged).Ok());
    EXPECT_TRUE(values.Set("c", "3"));
    EXPECT_TRUE(SaveDictionary(path.c_str(), values).Ok());
    EXPECT_EQ(ReadFile(file), "a = \"1\"\nb = \"2\"\nc = \"3\"\n");
    EXPECT_TRUE(values.Set("long", std::string(1024 * 1024, 'x')));
    EXPECT_EQ(SaveDictionary(path.c_str(), values).error, FileError::TooLarge);
    EXPECT_TRUE(values.Set("=", ""));
    EXPECT_EQ(SaveDictionary(path.c_str(), values).error, FileError::InvalidArgument);
    EXPECT_EQ(LoadDictionary(Utf8(scratch / "none").c_str(), values).error, FileError::NotFound);
}

} // namespace
} // namespace tsypr
