#include "module/interface_dll.h"

#include "tests/lib/test_files.h"
#include "tests/module/heap_blocks.h"
#include "tests/module/test_registry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <regex>
#include <thread>

namespace tsypr::test
{
namespace
{

namespace fs = std::filesystem;

using UniqueModule =
    std::unique_ptr<std::remove_pointer_t<HMODULE>, decltype([](HMODULE module) { FreeLibrary(module); })>;

fs::path TestFolder()
{
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return fs::path(path).parent_path();
}

TEST(LanguageFileName, FollowsTheUsersLanguage)
{
    // Of Chinese only Taiwan's, China's and Singapore's; of the others all, like Austrian German.
    const std::pair<LANGID, std::wstring> cases[] = {
        {0x0404, L"zh_tw_404"}, {0x0804, L"zh_cn_804"}, {0x1004, L"zh_cn_804"}, {0x0C04, L"en_us_409"},
        {0x1404, L"en_us_409"}, {0x0004, L"en_us_409"}, {0xFC04, L"en_us_409"}, {0x0407, L"de_de_407"},
        {0x0C07, L"de_de_407"}, {0x080A, L"es_es_40a"}, {0x0C0A, L"es_es_40a"}, {0x040C, L"fr_fr_40c"},
        {0xFC0C, L"fr_fr_40c"}, {0x0411, L"ja_jp_411"}, {0x0012, L"ko_kr_412"}, {0x0809, L"en_us_409"},
        {0x0416, L"en_us_409"}, {0x0419, L"en_us_409"}, {0x03FF, L"en_us_409"}, {0x0000, L"en_us_409"}};
    for (const auto& [language, name] : cases)
    {
        EXPECT_EQ(LanguageFileName(language), L"tsyprUI_" + name + L".dll") << language;
    }
}

// tsyprui.dll, loaded as a host process loads it.
class ModuleLoadTest : public testing::Test
{
protected:
    ModuleLoadTest()
    {
        SetText(kDriverKeyW, L"LogLevel", L"verbose");
        SetText(kModuleKeyW, L"LogFile", m_log.c_str());
        SetText(kLanguageKey, L"tsyprui_source", m_languages.c_str());
        SetDllDirectoryW((TestFolder() / "complete").c_str()); // searched instead of the current directory
    }

    UniqueModule Load() const
    {
        return UniqueModule(LoadLibraryW(m_library.c_str()));
    }

    // What the module has logged since the last question, each line with its level.
    std::string TakeLog() const
    {
        std::string text;
        for (const std::string& line : ReadLines(m_log))
        {
            text += std::regex_replace(line, std::regex(R"(^[-0-9]+ [0-9:.]+Z (\w+) \d+:\d+ )"), "$1: ") + "\n";
        }
        fs::remove(m_log);
        return text;
    }

    // The lines of a start that looks for the language library in that directory, and of its load.
    std::string LinesOfStart(const std::wstring& directory) const
    {
        return "info: virtual integrated print log level: verbose.\n"
               "info: LoadLanguageFile, get the tsyprui language files path: " +
               Utf8(directory + m_language) + "\n";
    }
    std::string LinesOfLoad(const std::wstring& directory) const
    {
        return LinesOfStart(directory) + "info: LoadLanguageFile, language " + Utf8(directory + m_language) +
               " resource library loaded.\n";
    }

    void ExpectNothingLoaded() const
    {
        EXPECT_EQ(GetModuleHandleW(L"tsyprui.dll"), nullptr);
        EXPECT_EQ(GetModuleHandleW(m_language.c_str()), nullptr);
        EXPECT_EQ(GetModuleHandleW(L"tsyprserverapi.dll"), nullptr);
    }

    // The module must not load, leave no library behind, and have logged these lines.
    void ExpectFailure(const std::string& lines) const
    {
        for (int i = 0; i < 3; ++i) // once more changes nothing
        {
            EXPECT_EQ(Load(), nullptr);
            ExpectNothingLoaded();
            EXPECT_EQ(TakeLog(), lines + "error: DllMain, failed to initialize the interface dll.\n");
        }
    }

    ScratchFolder m_folder{"module"};
    fs::path m_log = m_folder / "ui.log";
    fs::path m_library = TestFolder().parent_path().parent_path() / "tsyprui.dll";
    std::wstring m_languages = m_library.parent_path().native() + L"\\";
    std::wstring m_language = GetACP() == 932 ? L"tsyprUI_ja_jp_411.dll" : L"tsyprUI_en_us_409.dll"; // as the user's
    TestRegistry m_registry;
};

const std::string kServiceLoaded = "info: InitServerApiLib, succeeded to load server api library.\n";
const std::string kProviderCame = "verbose: InitPTProvider called.\n";
const std::string kProviderWent = "verbose: UninitPTProvider called.\n";
const std::string kNoLanguage = "error: InitInterfaceDLL, failed to load language library.\n";
const std::string kNoService = "error: InitInterfaceDLL, failed to initialize server api library.\n";

TEST_F(ModuleLoadTest, StartsStepByStepAndReleasesEverything)
{
    for (int i = 0; i < 3; ++i)
    {
        UniqueModule module = Load();
        EXPECT_NE(module, nullptr);
        std::thread([] {}).join(); // threads that come and go are no concern of the module
        module.reset();
        EXPECT_EQ(TakeLog(), LinesOfLoad(m_languages) + kServiceLoaded + kProviderCame + kProviderWent);
        ExpectNothingLoaded();
    }
    // Of several directories the first counts.
    const std::wstring several = m_languages + L'\0' + L"C:\\none\\" + L'\0';
    SetBytes(
        HKEY_LOCAL_MACHINE, kLanguageKey, L"tsyprui_source", REG_MULTI_SZ, several.c_str(), several.size() * 2 + 2);
    EXPECT_NE(Load(), nullptr);
    EXPECT_TRUE(TakeLog().starts_with(LinesOfLoad(m_languages)));
}

TEST_F(ModuleLoadTest, FailsWithoutItsLanguageLibrary)
{
    const std::wstring noBackslash = m_library.parent_path().native();
    for (const std::wstring& directory : {noBackslash, m_folder.path.native() + L"\\", std::wstring()})
    {
        SetText(kLanguageKey, L"tsyprui_source", directory.c_str());
        ExpectFailure(LinesOfStart(directory) + "error: LoadLanguageFile, loading language " +
                      Utf8(directory + m_language) + " resource library failed with error 126.\n" + kNoLanguage);
    }
    SetText(kLanguageKey, L"tsyprui_source", nullptr);
    EXPECT_EQ(Load(), nullptr);
    const std::string log = TakeLog();
    EXPECT_NE(log.find("\nerror: LoadLanguageFile, failed to get the tsyprui language files path: "), log.npos) << log;
    EXPECT_NE(log.find("\n" + kNoLanguage), log.npos) << log;
    SetText(kLanguageKey, L"tsyprui_source", m_languages.c_str());
    EXPECT_NE(Load(), nullptr); // what failed before has done no harm
}

TEST_F(ModuleLoadTest, FailsWithoutACompleteService)
{
    const std::string incomplete = kServiceLoaded + "error: InitServerApiLib, GetProcAddress failed with error127.\n";
    const std::string notLoaded = "error: InitServerApiLib, loading server api library failed with error ";
    const fs::path noLibrary = m_folder / "no library";
    fs::create_directory(noLibrary);
    std::ofstream(noLibrary / "tsyprserverapi.dll") << "no library";
    const std::pair<fs::path, std::string> cases[] = {{TestFolder() / "without_first", incomplete},
                                                      {TestFolder() / "without_last", incomplete},
                                                      {m_folder.path, notLoaded + "126.\n"},
                                                      {noLibrary, notLoaded + "193.\n"}};
    for (const auto& [folder, reason] : cases)
    {
        SetDllDirectoryW(folder.c_str());
        ExpectFailure(LinesOfLoad(m_languages) + reason + kNoService);
    }
    SetDllDirectoryW((TestFolder() / "complete").c_str());
    EXPECT_NE(Load(), nullptr);
}

TEST_F(ModuleLoadTest, MissingPicturesAreReportedOnly)
{
    const std::wstring directory = m_folder.path.native() + L"\\";
    // Any library without resources.
    fs::copy_file(TestFolder() / "complete" / "tsyprserverapi.dll", directory + m_language);
    SetText(kLanguageKey, L"tsyprui_source", directory.c_str());
    EXPECT_NE(Load(), nullptr);
    EXPECT_EQ(TakeLog(),
              LinesOfLoad(directory) + kServiceLoaded +
                  "error: InitInterfaceDLL, failed to load portait bitmap.\n"
                  "error: InitInterfaceDLL, failed to load landscape bitmap.\n"
                  "error: InitInterfaceDLL, failed to load the logo bitmap.\n" +
                  kProviderCame + kProviderWent);
}

TEST_F(ModuleLoadTest, ComesAndGoesWithoutLeavingMemoryBehind)
{
    for (const auto& [variant, times] : {std::pair{"complete", 200}, std::pair{"without_last", 50}})
    {
        SetDllDirectoryW((TestFolder() / variant).c_str());
        Load();
        const size_t before = BusyBlocks();
        for (int i = 0; i < times; ++i)
        {
            ASSERT_EQ(Load() != nullptr, variant == std::string_view("complete"));
        }
        EXPECT_LE(BusyBlocks(), before + 10) << variant; // some of the system's own
    }
}

// Has several threads make the module write log lines without end, and simply ends the process after some time.
[[noreturn]] void ExitWhileLogging(const UniqueModule& module, int milliseconds)
{
    using DeviceCapabilities = DWORD(WINAPI*)(HANDLE, PWSTR, WORD, PVOID, PDEVMODEW);
    const auto ask = reinterpret_cast<DeviceCapabilities>(
        reinterpret_cast<void*>(GetProcAddress(module.get(), "DrvDeviceCapabilities")));
    static std::atomic<int> calls{0};
    const auto askForEver = [ask]
    {
        for (wchar_t printer[] = L"Office Laser";; ++calls)
        {
            ask(nullptr, printer, 1, nullptr, nullptr);
        }
    };
    for (int i = 0; i < 4; ++i)
    {
        std::thread(askForEver).detach();
    }
    while (calls < 40)
    {
        Sleep(1);
    }
    Sleep(static_cast<DWORD>(milliseconds));
    std::exit(0); // NOLINT(concurrency-mt-unsafe)
}

TEST_F(ModuleLoadTest, ProcessEndsWhileOtherThreadsWriteLogLines)
{
    std::vector<std::vector<std::string>> logs; // looked at later: each process comes here again before it has a log
    for (int i = 0; i < 30; ++i)
    {
        EXPECT_EXIT(ExitWhileLogging(Load(), i % 7), testing::ExitedWithCode(0), "");
        logs.push_back(ReadLines(m_log));
        fs::remove(m_log);
    }
    int released = 0;
    for (std::vector<std::string>& lines : logs)
    {
        ASSERT_GT(lines.size(), 40U);
        // The system does not wait for the writes of threads that it ends: some may still go on beside the last line.
        const auto isRelease = [](const std::string& line) { return line.ends_with(" UninitPTProvider called."); };
        released += std::any_of(lines.end() - 4, lines.end(), isRelease) ? 1 : 0;
        lines.resize(lines.size() - 3);
        for (const std::string& line : lines)
        {
            EXPECT_TRUE(line.starts_with("20") && line.find('Z') == 23 && line.rfind("Z ") == 23) << line; // one, whole
        }
    }
    EXPECT_GT(released, 0);
}

} // namespace
} // namespace tsypr::test
