#include "module/interface_dll.h"

#include "tests/lib/test_files.h"
#include "tests/module/test_registry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <regex>
#include <thread>

namespace tsypr::test
{
namespace
{

namespace fs = std::filesystem;
using testing::ElementsAreArray;

struct FreeModule
{
    void operator()(HMODULE module) const noexcept
    {
        FreeLibrary(module);
    }
};
using UniqueModule = std::unique_ptr<std::remove_pointer_t<HMODULE>, FreeModule>;

fs::path TestFolder()
{
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return fs::path(path).parent_path();
}

// All the busy blocks of all heaps.
size_t BusyBlocks()
{
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(64, heaps);
    size_t blocks = 0;
    for (DWORD i = 0; i < count; ++i)
    {
        PROCESS_HEAP_ENTRY entry = {};
        HeapLock(heaps[i]);
        while (HeapWalk(heaps[i], &entry) != FALSE)
        {
            blocks += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? 1 : 0;
        }
        HeapUnlock(heaps[i]);
    }
    return blocks;
}

TEST(LanguageFileName, FollowsTheUsersLanguage)
{
    struct Case
    {
        WORD primary;
        WORD sub; // ignored where `anySub` is set
        bool anySub;
        const wchar_t* name;
    };
    const Case cases[] = {
        {0x04, 1, false, L"tsyprUI_zh_tw_404.dll"},
        {0x04, 2, false, L"tsyprUI_zh_cn_804.dll"},
        {0x04, 4, false, L"tsyprUI_zh_cn_804.dll"},
        {0x04, 0, false, L"tsyprUI_en_us_409.dll"},
        {0x04, 3, false, L"tsyprUI_en_us_409.dll"},
        {0x04, 5, false, L"tsyprUI_en_us_409.dll"},
        {0x04, 63, false, L"tsyprUI_en_us_409.dll"},
        {0x07, 0, true, L"tsyprUI_de_de_407.dll"},
        {0x0A, 0, true, L"tsyprUI_es_es_40a.dll"},
        {0x0C, 0, true, L"tsyprUI_fr_fr_40c.dll"},
        {0x11, 0, true, L"tsyprUI_ja_jp_411.dll"},
        {0x12, 0, true, L"tsyprUI_ko_kr_412.dll"},
        {0x09, 0, true, L"tsyprUI_en_us_409.dll"},
        {0x00, 0, true, L"tsyprUI_en_us_409.dll"},
        {0x16, 0, true, L"tsyprUI_en_us_409.dll"},
        {0x3FF, 0, true, L"tsyprUI_en_us_409.dll"},
    };
    for (const Case& c : cases)
    {
        for (unsigned sub = c.sub; sub <= (c.anySub ? 63U : c.sub); ++sub)
        {
            EXPECT_STREQ(LanguageFileName(static_cast<LANGID>(sub << 10 | c.primary)), c.name)
                << c.primary << ' ' << sub;
        }
    }
    EXPECT_STREQ(LanguageFileName(0x0C04), L"tsyprUI_en_us_409.dll"); // Hong Kong
    EXPECT_STREQ(LanguageFileName(0x1004), L"tsyprUI_zh_cn_804.dll"); // Singapore
}

// tsyprui.dll, loaded as a host process loads it.
class ModuleLoadTest : public testing::Test
{
protected:
    ModuleLoadTest()
        : m_folder("module"), m_library(TestFolder().parent_path().parent_path() / "tsyprui.dll"),
          m_languages(m_library.parent_path().native() + L"\\")
    {
        m_registry.SetText(kDriverKeyW, L"LogLevel", L"verbose");
        m_registry.SetText(kModuleKeyW, L"LogFile", (m_folder / "ui.log").native());
        SetLanguages(m_languages);
        SetService(TestFolder() / "complete");
    }
    ~ModuleLoadTest() override
    {
        SetDllDirectoryW(nullptr);
    }

    void SetLanguages(const std::wstring& directory, DWORD type = REG_SZ) const
    {
        m_registry.SetText(kLanguageKey, L"tsyprui_source", directory, type);
    }
    static void SetService(const fs::path& folder)
    {
        SetDllDirectoryW(folder.c_str()); // instead of the current directory
    }

    UniqueModule Load() const
    {
        return UniqueModule(LoadLibraryW(m_library.c_str()));
    }

    // The file that this user's language asks for.
    static std::wstring LanguageFile()
    {
        const char* locale = std::getenv("LC_ALL"); // NOLINT(concurrency-mt-unsafe)
        return locale != nullptr && std::string_view(locale).starts_with("ja") ? L"tsyprUI_ja_jp_411.dll"
                                                                               : L"tsyprUI_en_us_409.dll";
    }

    // What the module has logged since the last question, each line with its level.
    std::vector<std::string> TakeLog()
    {
        std::vector<std::string> lines = ReadLines(m_folder / "ui.log");
        lines.erase(lines.begin(), lines.begin() + m_taken);
        m_taken += static_cast<ptrdiff_t>(lines.size());
        for (std::string& line : lines)
        {
            line = std::regex_replace(line, std::regex(R"(^[-0-9]+ [0-9:.]+Z (\w+) \d+:\d+ )"), "$1: ");
        }
        return lines;
    }

    // The lines of a start that comes as far as the language library, or the service. What follows is `rest`.
    static std::vector<std::string> LinesOfStart(const std::wstring& path, bool loaded, std::vector<std::string> rest)
    {
        std::vector<std::string> lines = {"info: virtual integrated print log level: verbose.",
                                          "info: LoadLanguageFile, get the tsyprui language files path: " + Utf8(path)};
        if (loaded)
        {
            lines.push_back("info: LoadLanguageFile, language " + Utf8(path) + " resource library loaded.");
        }
        lines.insert(lines.end(), rest.begin(), rest.end());
        return lines;
    }

    // The module must not load, leave no library behind, and have logged these lines.
    void ExpectFailure(const std::vector<std::string>& expected)
    {
        for (int i = 0; i < 3; ++i) // once more changes nothing
        {
            EXPECT_EQ(Load(), nullptr);
            EXPECT_EQ(GetModuleHandleW(L"tsyprui.dll"), nullptr);
            EXPECT_EQ(GetModuleHandleW(LanguageFile().c_str()), nullptr);
            EXPECT_EQ(GetModuleHandleW(L"tsyprserverapi.dll"), nullptr);
            EXPECT_THAT(TakeLog(), ElementsAreArray(expected));
        }
    }

    ScratchFolder m_folder;
    fs::path m_library;
    std::wstring m_languages;
    TestRegistry m_registry;
    ptrdiff_t m_taken = 0;
};

TEST_F(ModuleLoadTest, StartsStepByStepAndReleasesEverything)
{
    const std::wstring language = m_languages + LanguageFile();
    const std::vector<std::string> started = LinesOfStart(
        language,
        true,
        {"info: InitServerApiLib, succeeded to load server api library.", "verbose: InitPTProvider called."});
    for (int i = 0; i < 3; ++i)
    {
        UniqueModule module = Load();
        ASSERT_NE(module, nullptr) << testing::PrintToString(TakeLog());
        EXPECT_NE(GetModuleHandleW(L"tsyprserverapi.dll"), nullptr);
        std::thread([] {}).join(); // threads that come and go are no concern of the module
        EXPECT_THAT(TakeLog(), ElementsAreArray(started));
        module.reset();
        EXPECT_THAT(TakeLog(), ElementsAreArray({"verbose: UninitPTProvider called."}));
        EXPECT_EQ(GetModuleHandleW(L"tsyprui.dll"), nullptr);
        EXPECT_EQ(GetModuleHandleW(LanguageFile().c_str()), nullptr);
        EXPECT_EQ(GetModuleHandleW(L"tsyprserverapi.dll"), nullptr);
    }
    // Of several directories the first counts.
    SetLanguages(m_languages + L'\0' + L"C:\\none\\" + L'\0', REG_MULTI_SZ);
    EXPECT_NE(Load(), nullptr);
    EXPECT_EQ(TakeLog().at(1), started[1]);
}

TEST_F(ModuleLoadTest, FailsWithoutItsLanguageLibrary)
{
    const auto failure = [](const std::wstring& directory)
    {
        const std::wstring path = directory + LanguageFile();
        return LinesOfStart(
            path,
            false,
            {"error: LoadLanguageFile, loading language " + Utf8(path) + " resource library failed with error 126.",
             "error: InitInterfaceDLL, failed to load language library.",
             "error: DllMain, failed to initialize the interface dll."});
    };
    for (const std::wstring& directory :
         {m_library.parent_path().native() /* no backslash */, m_folder.Path().native() + L"\\", std::wstring()})
    {
        SetLanguages(directory);
        ExpectFailure(failure(directory));
    }
    RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kLanguageKey, L"tsyprui_source");
    EXPECT_EQ(Load(), nullptr);
    EXPECT_THAT(TakeLog(),
                testing::ElementsAre("info: virtual integrated print log level: verbose.",
                                     testing::StartsWith("error: LoadLanguageFile, failed to get the tsyprui language "
                                                         "files path: "),
                                     "error: InitInterfaceDLL, failed to load language library.",
                                     "error: DllMain, failed to initialize the interface dll."));
    SetLanguages(m_languages);
    EXPECT_NE(Load(), nullptr); // what failed before has done no harm
}

TEST_F(ModuleLoadTest, FailsWithoutACompleteService)
{
    const std::wstring language = m_languages + LanguageFile();
    const auto failure = [&](const std::string& reason)
    {
        std::vector<std::string> rest = {"error: InitServerApiLib, " + reason,
                                         "error: InitInterfaceDLL, failed to initialize server api library.",
                                         "error: DllMain, failed to initialize the interface dll."};
        if (reason.starts_with("GetProcAddress"))
        {
            rest.insert(rest.begin(), "info: InitServerApiLib, succeeded to load server api library.");
        }
        return LinesOfStart(language, true, rest);
    };
    for (const char* variant : {"without_first", "without_last"})
    {
        SetService(TestFolder() / variant);
        ExpectFailure(failure("GetProcAddress failed with error127."));
    }
    SetService(m_folder.Path());
    ExpectFailure(failure("loading server api library failed with error 126."));
    WriteFile(m_folder / "tsyprserverapi.dll", "no library");
    ExpectFailure(failure("loading server api library failed with error 193."));
    SetService(TestFolder() / "complete");
    EXPECT_NE(Load(), nullptr);
}

TEST_F(ModuleLoadTest, MissingPicturesAreReportedOnly)
{
    const std::wstring language = m_folder.Path().native() + L"\\" + LanguageFile();
    fs::copy_file(TestFolder() / "complete" / "tsyprserverapi.dll", language); // any library without resources
    SetLanguages(m_folder.Path().native() + L"\\");
    UniqueModule module = Load();
    ASSERT_NE(module, nullptr);
    EXPECT_THAT(TakeLog(),
                ElementsAreArray(LinesOfStart(language,
                                              true,
                                              {"info: InitServerApiLib, succeeded to load server api library.",
                                               "error: InitInterfaceDLL, failed to load portait bitmap.",
                                               "error: InitInterfaceDLL, failed to load landscape bitmap.",
                                               "error: InitInterfaceDLL, failed to load the logo bitmap.",
                                               "verbose: InitPTProvider called."})));
    module.reset();
    EXPECT_THAT(TakeLog(), ElementsAreArray({"verbose: UninitPTProvider called."}));
}

TEST_F(ModuleLoadTest, ComesAndGoesWithoutLeavingMemoryBehind)
{
    for (const auto& [variant, times] : {std::pair{"complete", 200}, std::pair{"without_last", 50}})
    {
        SetService(TestFolder() / variant);
        Load();
        const size_t before = BusyBlocks();
        for (int i = 0; i < times; ++i)
        {
            ASSERT_EQ(Load() != nullptr, variant == std::string_view("complete"));
        }
        const size_t after = BusyBlocks();
        EXPECT_LE(after, before + 10) << variant; // some of the system's own
    }
}

// Runs the program that ends while its threads write log lines. Returns its exit code, or 99 when it hangs.
DWORD RunExitWhileLogging(const fs::path& module, int milliseconds)
{
    const fs::path program = TestFolder() / "exit_while_logging.exe";
    std::wstring command = L"\"" + program.native() + L"\" \"" + module.native() + L"\" \"" +
                           (TestFolder() / "complete").native() + L"\" \"" + kFakeMachine + L"\" " +
                           std::to_wstring(milliseconds);
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (CreateProcessW(
            program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process) == FALSE)
    {
        return 98;
    }
    DWORD code = 99;
    if (WaitForSingleObject(process.hProcess, 20'000) == WAIT_OBJECT_0)
    {
        GetExitCodeProcess(process.hProcess, &code);
    }
    else
    {
        TerminateProcess(process.hProcess, 99);
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return code;
}

TEST_F(ModuleLoadTest, ProcessEndsWhileOtherThreadsWriteLogLines)
{
    constexpr int kTimes = 30;
    // The system does not wait for the writes of threads that it ends: one may still go on beside the last line.
    constexpr size_t kUncertainLines = 3;
    int released = 0;
    for (int i = 0; i < kTimes; ++i)
    {
        ASSERT_EQ(RunExitWhileLogging(m_library, i % 7), 0U) << i;
        std::vector<std::string> lines = ReadLines(m_folder / "ui.log");
        fs::remove(m_folder / "ui.log");
        ASSERT_GT(lines.size(), 40U);
        released += lines.back().ends_with(" UninitPTProvider called.") ? 1 : 0;
        lines.resize(lines.size() - kUncertainLines);
        for (const std::string& line : lines)
        {
            EXPECT_TRUE(line.starts_with("20") && line.find('Z') == 23) << line;
            EXPECT_EQ(line.find("Z ", 24), std::string::npos) << line; // no second line in it
        }
    }
    EXPECT_GT(released, kTimes / 2);
}

} // namespace
} // namespace tsypr::test
