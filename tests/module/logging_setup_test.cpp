#include "module/logging_setup.h"

#include "module/log.h"
#include "tests/lib/scoped_variable.h"
#include "tests/lib/test_files.h"
#include "tests/module/test_registry.h"

#include <gtest/gtest.h>

#include <process.h>

#include <regex>

namespace tsypr::test
{
namespace
{

namespace fs = std::filesystem;

class LoggingSetupTest : public testing::Test
{
protected:
    LoggingSetupTest()
    {
        fs::create_directory(m_data);
        SetText(kProductKey, L"AppDataPath", m_data.c_str());
    }
    ~LoggingSetupTest() override
    {
        ShutdownLogging();
    }

    void SetPreference(const fs::path& folder, const std::string& name, const std::string& value) const
    {
        m_folder.Write(folder / "preferences.conf",
                       value.empty() ? "" : "pref.pr.ui." + name + " = \"" + value + "\"\n");
    }

    // The number of logs in the folder, which must all have generated names.
    static int CountLogs(const fs::path& folder)
    {
        const std::regex pattern(R"(print_ui_20\d\d-[01]\d-[0-3]\d_[0-2]\d[0-5]\d[0-5]\d-\d{3}_)" +
                                 std::to_string(_getpid()) + R"(\.log)");
        int count = 0;
        std::error_code none;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder, none))
        {
            EXPECT_TRUE(std::regex_match(Utf8(entry.path().filename()), pattern)) << entry.path();
            ++count;
        }
        return count;
    }

    static void WriteALog()
    {
        EXPECT_EQ(InitLogging("ui"), 0);
        LogError("%s, logged.\n", "Test");
        ShutdownLogging();
    }

    ScratchFolder m_folder{"logging"};
    fs::path m_data = m_folder / "data";
    fs::path m_userData = m_folder / "user/Zelmora/Tessary";
    ScopedVariable m_userVariable{"APPDATA", m_folder / "user"};
    TestRegistry m_registry;
};

TEST_F(LoggingSetupTest, TakesTheLevelFromTheFirstSourceThatHasOne)
{
    // The texts of the common and of the module's key (null: none) and of the machine's and of the user's preference
    // (empty: none), the level as the log says it and its number, the type of the common text.
    using Text = const wchar_t*;
    using Case = std::tuple<Text, Text, const char*, const char*, const char*, int, DWORD>;
    const Case cases[] = {{nullptr, nullptr, "", "", "info", 5, REG_SZ},
                          {L"TRACE", nullptr, "", "", "verbose", 6, REG_SZ},
                          {L"debug1", L"warning", "", "", "debug1", 9, REG_SZ},
                          {L"error", L"debug1", "debug1", "debug1", "error", 2, REG_SZ},
                          {nullptr, L"notice", "debug", "", "notice", 4, REG_SZ},
                          {nullptr, nullptr, "debug", "", "debug", 8, REG_SZ},
                          {nullptr, nullptr, "", "trivia", "trivia", 7, REG_SZ},
                          {nullptr, nullptr, "audit", "tRACE", "verbose", 6, REG_SZ},
                          {L"VERBOSE", nullptr, "", "", "VERBOSE", 6, REG_SZ},
                          {L"loud", L"error", "", "", "loud", 5, REG_SZ}, // unknown, but found
                          {L"", L"error", "", "", "", 5, REG_SZ},
                          {L"debug", L"warning", "", "", "warning", 3, REG_EXPAND_SZ}, // of the wrong type: not found
                          {L"debug", nullptr, "", "", "info", 5, REG_MULTI_SZ}};
    const fs::path file = m_folder / "level.log";
    SetText(kModuleKeyW, L"LogFile", file.c_str());
    for (const auto& [common, module, preference, userPreference, name, level, type] : cases)
    {
        SetPreference(m_data, "minLogLevel", preference);
        SetPreference(m_userData, "minLogLevel", userPreference);
        SetText(kDriverKeyW, L"LogLevel", common, type);
        SetText(kModuleKeyW, L"LogLevel", module);
        ASSERT_EQ(InitLogging("ui"), 0);
        EXPECT_TRUE(LogEnabled(level) && !LogEnabled(level + 1)) << name;
        ShutdownLogging();
        const std::vector<std::string> lines = ReadLines(file);
        const std::string expected = std::string(" virtual integrated print log level: ") + name + ".";
        EXPECT_EQ(lines.size(), level < kLogInfo ? 0U : 1U) << name;
        EXPECT_TRUE(lines.empty() || lines[0].ends_with(expected)) << lines[0];
        fs::remove(file);
    }
}

TEST_F(LoggingSetupTest, ChoosesTheFile)
{
    const fs::path one = m_folder / "one.log";
    const fs::path two = m_folder / "two.log";
    // The files of the module's and of the common key and of the preference (empty: none), and the one that is
    // written (empty: one with a generated name).
    const std::tuple<fs::path, fs::path, fs::path, fs::path, DWORD> cases[] = {
        {one, two, two, one, REG_SZ},
        {{}, two, {}, {}, REG_SZ}, // the common key is for levels only
        {{}, two, one, one, REG_SZ},
        {{}, {}, {}, {}, REG_SZ},
        {one, {}, {}, {}, REG_MULTI_SZ}};
    for (const auto& [module, common, preference, expected, type] : cases)
    {
        SetText(kModuleKeyW, L"LogFile", module.empty() ? nullptr : module.c_str(), type);
        SetText(kDriverKeyW, L"LogFile", common.empty() ? nullptr : common.c_str());
        SetPreference(m_data, "logFile", Utf8(preference));
        WriteALog();
        EXPECT_EQ(fs::exists(one), expected == one) << module << common << preference;
        EXPECT_FALSE(fs::exists(two)) << module << common << preference;
        EXPECT_EQ(CountLogs(m_data / "logs"), expected.empty() ? 1 : 0) << module << common << preference;
        fs::remove(one);
        fs::remove_all(m_data / "logs");
    }
}

TEST_F(LoggingSetupTest, PassesOnWhatThePreferencesSayAboutTheFiles)
{
    SetPreference(m_data, "log.rotateBytes", "1"); // a file for each line
    WriteALog();
    WriteALog();
    const auto entries = [this] { return std::distance(fs::directory_iterator(m_data / "logs"), {}); };
    EXPECT_EQ(entries(), 4);
    SetPreference(m_data, "log.keepFiles", "1");
    WriteALog();
    EXPECT_EQ(entries(), 1);
}

TEST_F(LoggingSetupTest, FileNamesAreInTheCodePageOfTheRegistry)
{
    for (const wchar_t* name : {L"plain.log", L"pr\u00FCf.log", L"\u65E5\u672C\u8868.log"}) // the last has a byte "\"
    {
        const fs::path file = m_folder / name;
        std::ofstream(file).close();
        if (fs::remove(file)) // not a name that the file system cannot take
        {
            BOOL lost = FALSE;
            char narrow[32];
            WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, name, -1, narrow, 32, nullptr, &lost);
            SetText(kModuleKeyW, L"LogFile", lost == FALSE ? file.c_str() : nullptr);
            SetPreference(m_data, "logFile", lost == FALSE ? "" : Utf8(file)); // which is always UTF-8
            WriteALog();
            EXPECT_EQ(ReadLines(file).size(), 2U) << file;
        }
    }
}

TEST_F(LoggingSetupTest, ReportsWhyItDoesNotStart)
{
    EXPECT_EQ(InitLogging(nullptr), 2);
    EXPECT_EQ(InitLogging(""), 3);
    EXPECT_FALSE(LogEnabled(kLogAudit));
    EXPECT_EQ(InitLogging("ui"), 0);
    EXPECT_EQ(InitLogging("ui"), 3); // runs already, and goes on
    EXPECT_TRUE(LogEnabled(kLogInfo));
    ShutdownLogging();
    fs::remove_all(m_data / "logs");
    std::ofstream(m_data / "logs") << "a file where the folder should be"; // is no reason
    WriteALog();
}

} // namespace
} // namespace tsypr::test
