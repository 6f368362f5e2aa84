#include "module/logging_setup.h"

#include "module/log.h"
#include "tests/lib/test_files.h"
#include "tests/module/test_registry.h"

#include <gtest/gtest.h>

#include <process.h>

#include <optional>
#include <regex>

namespace tsypr::test
{
namespace
{

namespace fs = std::filesystem;

// Gives an environment variable another value for a while.
class ScopedVariable
{
public:
    ScopedVariable(const wchar_t* name, const fs::path& value) : m_name(name)
    {
        wchar_t old[1024] = {};
        m_old.assign(old, GetEnvironmentVariableW(name, old, 1024));
        SetEnvironmentVariableW(name, value.c_str());
    }
    ~ScopedVariable()
    {
        SetEnvironmentVariableW(m_name, m_old.c_str());
    }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    const wchar_t* m_name;
    std::wstring m_old;
};

class LoggingSetupTest : public testing::Test
{
protected:
    LoggingSetupTest()
        : m_folder("logging"), m_data(m_folder / "data"), m_userData(L"APPDATA", m_folder / "user"),
          m_programData(L"ProgramData", m_folder / "all")
    {
        fs::create_directory(m_data);
        fs::create_directories(m_folder / "user/Zelmora/Tessary");
        m_registry.SetText(kProductKey, L"AppDataPath", m_data.native());
    }
    ~LoggingSetupTest() override
    {
        ShutdownLogging();
    }

    void SetPreferences(const std::string& machine, const std::string& user = "") const
    {
        WriteFile(m_data / "preferences.conf", machine);
        WriteFile(m_folder / "user/Zelmora/Tessary/preferences.conf", user);
    }

    // The files of the folder, by name. Empty when there is no such folder.
    static std::vector<std::string> FilesOf(const fs::path& folder)
    {
        std::vector<std::string> names;
        std::error_code ignored;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored))
        {
            names.push_back(Utf8(entry.path().filename()));
        }
        return names;
    }

    static bool IsGeneratedName(const std::string& name)
    {
        const std::regex pattern(R"(print_ui_20\d\d-[01]\d-[0-3]\d_[0-2]\d[0-5]\d[0-5]\d-\d{3}_(\d+)\.log)");
        std::smatch match;
        return std::regex_match(name, match, pattern) && match[1] == std::to_string(_getpid());
    }

    ScratchFolder m_folder;
    fs::path m_data;
    ScopedVariable m_userData;
    ScopedVariable m_programData;
    TestRegistry m_registry;
};

TEST_F(LoggingSetupTest, TakesTheLevelFromTheFirstSourceThatHasOne)
{
    struct Case
    {
        const wchar_t* common; // registry; null: not set
        const wchar_t* module;
        const char* preference;     // machine-wide; empty: not set
        const char* userPreference; // likewise
        const char* name;           // as the log says it
        int level;
        DWORD commonType = REG_SZ;
    };
    const Case cases[] = {
        {nullptr, nullptr, "", "", "info", 5},
        {L"TRACE", nullptr, "", "", "verbose", 6},
        {L"Trace", L"error", "debug", "", "verbose", 6},
        {nullptr, L"trace", "", "", "verbose", 6},
        {nullptr, nullptr, "tRACE", "", "verbose", 6},
        {L"debug1", L"warning", "", "", "debug1", 9},
        {L"error", L"debug1", "debug1", "debug1", "error", 2},
        {nullptr, L"notice", "debug", "", "notice", 4},
        {nullptr, L"trivia", "audit", "", "trivia", 7},
        {nullptr, nullptr, "debug", "", "debug", 8},
        {nullptr, nullptr, "", "verbose", "verbose", 6},
        {nullptr, nullptr, "audit", "trivia", "trivia", 7},
        {nullptr, nullptr, "audit", "", "audit", 0},
        {L"panic", nullptr, "", "", "panic", 1},
        {L"VERBOSE", nullptr, "", "", "VERBOSE", 6},
        {L"loud", L"error", "", "", "loud", 5}, // unknown, but found
        {L"", L"error", "", "", "", 5},
        {L"debug", L"warning", "", "", "warning", 3, REG_EXPAND_SZ}, // of the wrong type: not found
        {L"debug", nullptr, "", "", "info", 5, REG_MULTI_SZ},
    };
    for (const Case& c : cases)
    {
        const auto preference = [](const char* value)
        { return *value != '\0' ? std::string("pref.pr.ui.minLogLevel = \"") + value + "\"\n" : ""; };
        SetPreferences(preference(c.preference), preference(c.userPreference));
        for (const auto& [key, value, type] : {std::tuple{kDriverKeyW, c.common, c.commonType},
                                               std::tuple{kModuleKeyW, c.module, static_cast<DWORD>(REG_SZ)}})
        {
            RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, key, L"LogLevel");
            if (value != nullptr)
            {
                m_registry.SetText(key, L"LogLevel", value, type);
            }
        }
        const fs::path file = m_folder / "level.log";
        fs::remove(file);
        m_registry.SetText(kModuleKeyW, L"LogFile", file.native());
        ASSERT_EQ(InitLogging("ui"), 0);
        EXPECT_TRUE(LogEnabled(c.level)) << c.name;
        EXPECT_FALSE(LogEnabled(c.level + 1)) << c.name;
        ShutdownLogging();
        const std::string text = ReadFile(file);
        const std::string expected = std::string(" virtual integrated print log level: ") + c.name + ".\n";
        EXPECT_TRUE(c.level < kLogInfo ? text.empty() : text.ends_with(expected)) << c.name << ": " << text;
    }
}

TEST_F(LoggingSetupTest, ChoosesTheFile)
{
    const fs::path one = m_folder / "one.log";
    const fs::path two = m_folder / "two.log";
    struct Case
    {
        fs::path module; // registry; empty: not set
        fs::path common;
        fs::path preference;
        fs::path expected; // empty: a generated name
        DWORD type = REG_SZ;
    };
    const Case cases[] = {
        {one, {}, {}, one},
        {one, two, two, one},
        {{}, two, {}, {}}, // the common key is for levels only
        {{}, {}, one, one},
        {{}, two, one, one},
        {{}, {}, {}, {}},
        {one, {}, {}, {}, REG_MULTI_SZ},
    };
    for (const Case& c : cases)
    {
        const size_t number = static_cast<size_t>(&c - cases);
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, kDriverKeyW);
        for (const auto& [key, value] : {std::pair{kModuleKeyW, c.module}, std::pair{kDriverKeyW, c.common}})
        {
            if (!value.empty())
            {
                m_registry.SetText(key, L"LogFile", value.native(), c.type);
            }
        }
        SetPreferences(c.preference.empty() ? "" : "pref.pr.ui.logFile = \"" + Utf8(c.preference) + "\"\n");
        ASSERT_EQ(InitLogging("ui"), 0);
        ShutdownLogging();
        const std::vector<std::string> generated = FilesOf(m_data / "logs");
        EXPECT_EQ(fs::exists(one), c.expected == one) << number;
        EXPECT_FALSE(fs::exists(two)) << number;
        EXPECT_EQ(generated.size(), c.expected.empty() ? 1U : 0U) << number;
        EXPECT_TRUE(generated.empty() || IsGeneratedName(generated[0])) << generated[0];
        fs::remove(one);
        fs::remove_all(m_data / "logs");
    }
}

TEST_F(LoggingSetupTest, FindsTheApplicationData)
{
    const fs::path common = m_folder / "all/Zelmora/Tessary";
    fs::create_directories(common);
    struct Case
    {
        std::optional<std::wstring> registered;
        fs::path expected; // empty: no file
    };
    const Case cases[] = {
        {m_data.native() + L"\\", m_data}, // as some write directories
        {std::nullopt, common},
        {L"", common},
        {(m_folder / "none").native(), {}}, // registered, but not there: no file rather than one elsewhere
    };
    for (const Case& c : cases)
    {
        RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kProductKey, L"AppDataPath");
        if (c.registered.has_value())
        {
            m_registry.SetText(kProductKey, L"AppDataPath", *c.registered);
        }
        EXPECT_EQ(InitLogging("ui"), 0);
        ShutdownLogging();
        for (const fs::path& folder : {m_data, common, m_folder / "none"})
        {
            EXPECT_EQ(FilesOf(folder / "logs").size(), folder == c.expected ? 1U : 0U) << folder << c.expected;
            fs::remove_all(folder / "logs");
        }
    }
    fs::remove_all(common); // neither registered nor where it is by default
    RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kProductKey, L"AppDataPath");
    EXPECT_EQ(InitLogging("ui"), 0);
    LogError("%s, lost.\n", "Test");
    EXPECT_FALSE(fs::exists(m_folder / "all/Zelmora/Tessary"));
}

// Whether the file system and the user's code page both know all the characters.
bool IsUsableName(const fs::path& folder, const std::wstring& name)
{
    BOOL lost = FALSE;
    char narrow[32];
    WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, name.c_str(), -1, narrow, sizeof(narrow), nullptr, &lost);
    WriteFile(folder / name, "");
    return lost == FALSE && fs::remove(folder / name);
}

TEST_F(LoggingSetupTest, FileNamesAreInTheCodePageOfTheRegistry)
{
    for (const wchar_t* name : {L"plain.log", L"pr\u00FCf.log", L"\u65E5\u672C\u8868.log"}) // the last has a byte "\"
    {
        if (IsUsableName(m_folder.Path(), name))
        {
            m_registry.SetText(kModuleKeyW, L"LogFile", (m_folder / name).native());
            ASSERT_EQ(InitLogging("ui"), 0);
            ShutdownLogging();
            EXPECT_TRUE(ReadFile(m_folder / name).ends_with(" virtual integrated print log level: info.\n"));
        }
    }
    // Preferences are always UTF-8.
    const fs::path file = m_folder / L"pr\u00FCf-2.log";
    if (IsUsableName(m_folder.Path(), file.filename().native()))
    {
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, kModuleKeyW);
        SetPreferences("pref.pr.ui.logFile = \"" + Utf8(file) + "\"");
        ASSERT_EQ(InitLogging("ui"), 0);
        EXPECT_TRUE(fs::exists(file));
    }
}

TEST_F(LoggingSetupTest, UnusableFilesDoNotKeepItFromStarting)
{
    WriteFile(m_data / "logs", "a file where the folder should be");
    EXPECT_EQ(InitLogging("ui"), 0);
    LogError("%s, lost.\n", "Test");
    ShutdownLogging();
    for (const fs::path& path : {m_folder.Path(), m_folder / "none/none/ui.log", fs::path(L"?<>*"), fs::path()})
    {
        m_registry.SetText(kModuleKeyW, L"LogFile", path.native());
        EXPECT_EQ(InitLogging("ui"), 0) << path;
        LogError("%s, lost.\n", "Test");
        ShutdownLogging();
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
    ShutdownLogging();
    EXPECT_EQ(InitLogging("ui"), 0);
}

} // namespace
} // namespace tsypr::test
