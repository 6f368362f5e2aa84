// Printing preferences as an application shows them: Windows' own functions, the installed module, the reference
// service and our property sheet interface, with a user on a second thread.
#include "language/resource_ids.h"
#include "tests/compstui/sheet_fixture.h"
#include "tests/module/heap_blocks.h"
#include "tests/printctl/printctl_fixture.h"
#include "tests/remote/device_mode_builder.h"
#include "tools/compstui/contract_exports.h"
#include "tools/preferences_user/sheet_user.h"

#include <process.h>
#include <prsht.h>
#include <psapi.h>
#include <winspool.h>

#include <array>
#include <atomic>
#include <mutex>
#include <thread>

namespace tsypr::test
{
namespace
{

namespace fs = std::filesystem;
using compstui_tests::Press;
using compstui_tests::User;
using printctl_tests::Json;
using printctl_tests::ProgramFolder;

constexpr wchar_t kPrinter[] = L"Studio Color";
constexpr wchar_t kMirror[] = L"Mirror Color"; // the same with its lists for N-up and staples turned round

// A page and one of its lists or the number of copies, and the entry to choose.
struct Choice
{
    int page;
    int control;
    WPARAM entry;
};
using Choices = std::vector<Choice>;

const Choices kFirstPage = {{0, IDC_ORIENTATION, 1}, {0, IDC_PAGES_PER_SHEET, 2}, {0, IDC_PAGE_ORDER, 1}};
const Choices kAllPages = {{0, IDC_ORIENTATION, 1},
                           {0, IDC_PAGES_PER_SHEET, 2},
                           {0, IDC_PAGE_ORDER, 1},
                           {1, IDC_PAPER_SIZE, 1},
                           {1, IDC_PRINT_QUALITY, 3},
                           {2, IDC_COPIES, 7},
                           {2, IDC_COMPRESSION, 3},
                           {3, IDC_STAPLE, 1},
                           {4, IDC_WATERMARK_TEXT, 1}};
constexpr char kUntouched[] = "1 9 -3 1 2 1 No Watermark psk:RightBottom psk:None";
constexpr char kAllChosen[] = "2 8 -4 7 3 4 Confidential psk:BottomRight psk:StapleTopLeft";

HWND PageOf(HWND sheet)
{
    return reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
}

void Choose(HWND sheet, const Choices& choices)
{
    for (const auto& [index, id, entry] : choices)
    {
        SendMessageW(sheet, PSM_SETCURSEL, static_cast<WPARAM>(index), 0);
        const HWND page = PageOf(sheet);
        const HWND control = GetDlgItem(page, id);
        ASSERT_TRUE(IsWindowEnabled(control)) << id;
        if (id == IDC_COPIES)
        {
            SetDlgItemInt(page, id, static_cast<UINT>(entry), FALSE);
            continue;
        }
        EXPECT_GE(SendMessageW(control, CB_SETCURSEL, entry, 0), 0) << id;
        SendMessageW(page, WM_COMMAND, MAKEWPARAM(id, CBN_SELCHANGE), reinterpret_cast<LPARAM>(control));
    }
}

User::Deed ChooseAndPress(const Choices& choices, int button)
{
    return [=](HWND sheet)
    {
        Choose(sheet, choices);
        Press(sheet, button);
    };
}

// A printer that the application has open, with the settings that it has for it.
class Printer
{
public:
    explicit Printer(std::wstring name) : m_name(std::move(name))
    {
        EXPECT_TRUE(OpenPrinterW(m_name.data(), &handle, nullptr));
        settings.resize(static_cast<size_t>(Ask(nullptr, nullptr, 0)));
        EXPECT_EQ(IDOK, Ask(Get(), nullptr, DM_OUT_BUFFER));
    }
    ~Printer()
    {
        ClosePrinter(handle);
    }
    Printer(const Printer&) = delete;
    Printer& operator=(const Printer&) = delete;

    LONG Ask(DEVMODEW* out, DEVMODEW* in, DWORD mode)
    {
        return DocumentPropertiesW(nullptr, handle, m_name.data(), out, in, mode);
    }
    // Shows the sheet; the settings become what the user wants. Returns the user's button.
    LONG Prompt(const User::Deed& deed)
    {
        const User user(deed);
        return Ask(Get(), Get(), DM_IN_PROMPT | DM_IN_BUFFER | DM_OUT_BUFFER);
    }

    DEVMODEW* Get()
    {
        return reinterpret_cast<DEVMODEW*>(settings.data());
    }
    Words Settings()
    {
        const DEVMODEW* dm = Get();
        const PrivateDevMode& block = *GetPrivateDevMode(dm);
        const auto* watermark = reinterpret_cast<const wchar_t*>(block.watermark + 100);
        const auto narrow = [](const std::wstring& text) { return fs::path(text).string(); };
        return Words() << dm->dmOrientation << dm->dmPaperSize << dm->dmPrintQuality << dm->dmCopies
                       << uint32_t{block.compression} << uint32_t{block.pagesPerSheet} << narrow(watermark)
                       << narrow(Text(block.nupLayout)) << narrow(Text(block.staple));
    }
    HANDLE handle = nullptr;
    Bytes settings;

private:
    std::wstring m_name;
};

fs::path Folder()
{
    return fs::temp_directory_path() / L"preferences test";
}

// Studio Color's profile under both names.
void WriteProfiles()
{
    fs::create_directories(Folder());
    Json profile = Json::parse(printctl_tests::ReadText(ProgramFolder() / L"printers" / L"studio-color.json"));
    for (const wchar_t* name : {kPrinter, kMirror})
    {
        profile["name"] = fs::path(name).string();
        for (Json* list : {&profile["nup"]["pagesPerSheet"], &profile["nup"]["directions"], &profile["staple"]})
        {
            if (name == kMirror)
            {
                std::reverse(list->begin(), list->end());
            }
        }
        printctl_tests::WriteText(Folder() / (std::wstring(name) + L".json"), profile.dump());
    }
}

class Preferences : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        WriteProfiles();
        printctl_tests::InstallProduct({L"--profiles", Folder(), L"--printer", kPrinter, L"--printer", kMirror});
    }
    static void TearDownTestSuite()
    {
        printctl_tests::RunPrintctl({L"remove"});
        std::error_code ignored;
        fs::remove_all(Folder(), ignored);
    }
    void TearDown() override
    {
        const auto faults = reinterpret_cast<decltype(&CompstuiContractFaults)>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"compstui.dll"), "CompstuiContractFaults")));
        ASSERT_NE(nullptr, faults) << "not our property sheet interface";
        EXPECT_EQ(0U, faults());
    }
};

TEST_F(Preferences, EndAsTheUserSays)
{
    Printer printer(kPrinter);
    const Bytes before = printer.settings;
    EXPECT_EQ(kUntouched, printer.Settings());
    for (const auto& [message, wParam] :
         {std::pair{WM_COMMAND, IDCANCEL}, std::pair{WM_SYSCOMMAND, SC_CLOSE}, std::pair{WM_CLOSE, 0}})
    {
        const auto cancel = [message = message, wParam = wParam](HWND sheet)
        {
            Choose(sheet, kAllPages);
            PostMessageW(sheet, static_cast<UINT>(message), static_cast<WPARAM>(wParam), 0);
        };
        EXPECT_EQ(IDCANCEL, printer.Prompt(cancel)) << message;
        EXPECT_EQ(before, printer.settings) << message;
    }
    EXPECT_EQ(IDOK, printer.Prompt(ChooseAndPress(kFirstPage, IDOK)));
    EXPECT_EQ("2 9 -3 1 2 4 No Watermark psk:BottomRight psk:None", printer.Settings());
    Printer expected(kPrinter); // of the pages that were not looked at nothing has changed
    expected.Get()->dmOrientation = DMORIENT_LANDSCAPE;
    expected.Get()->dmFields |= DM_YRESOLUTION;
    GetPrivateDevMode(expected.Get())->pagesPerSheet = 4;
    GetPrivateDevMode(expected.Get())->nupLayout = GetPrivateDevMode(printer.Get())->nupLayout;
    EXPECT_EQ(expected.settings, printer.settings);

    EXPECT_EQ(IDOK, printer.Prompt(ChooseAndPress(kAllPages, IDOK)));
    EXPECT_EQ(kAllChosen, printer.Settings());
    printer.settings = before;
    const auto applyThenCancel = [](HWND sheet)
    {
        Choose(sheet, kAllPages);
        const HWND apply = GetDlgItem(sheet, compstui_tests::kApplyButton);
        EXPECT_TRUE(IsWindowEnabled(apply));
        SendMessageW(apply, BM_CLICK, 0, 0);
        EXPECT_FALSE(IsWindowEnabled(apply));
        Choose(sheet, {{0, IDC_ORIENTATION, 0}, {2, IDC_COPIES, 9}, {3, IDC_STAPLE, 2}});
        Press(sheet, IDCANCEL);
    };
    EXPECT_EQ(IDOK, printer.Prompt(applyThenCancel)); // what was applied is the application's
    EXPECT_EQ(kAllChosen, printer.Settings());
}

TEST_F(Preferences, StartFromThePrinterWithoutInputAndNeedAnOutput)
{
    Printer printer(kPrinter);
    Printer other(kPrinter);
    other.Get()->dmOrientation = DMORIENT_LANDSCAPE;
    for (DEVMODEW* in : {static_cast<DEVMODEW*>(nullptr), other.Get()})
    {
        printer.Get()->dmOrientation = DMORIENT_LANDSCAPE;
        const User user({IDOK});
        EXPECT_EQ(IDOK, printer.Ask(printer.Get(), in, DM_IN_PROMPT | DM_OUT_BUFFER));
        EXPECT_EQ(kUntouched, printer.Settings());
    }
    EXPECT_LT(printer.Ask(nullptr, nullptr, DM_IN_PROMPT), 0);
    EXPECT_LT(printer.Ask(nullptr, other.Get(), DM_IN_PROMPT | DM_IN_BUFFER), 0);
}

// Wine's text output can lock up when several threads draw at the same moment. So the sheets, which are open at once,
// are opened and used in turn, and lie side by side, so that none draws what another has covered.
TEST_F(Preferences, MayBeOpenSeveralTimesAtOnce)
{
    std::atomic<int> open{0};
    std::mutex turn;
    const auto isOpen = [&](int count)
    {
        for (int i = 0; i < 20000 && open < count; ++i)
        {
            Sleep(1);
        }
        return open >= count;
    };
    const auto show = [&](const wchar_t* name, const char* settings)
    {
        Printer printer(name);
        const auto deed = [&](HWND sheet)
        {
            SetWindowPos(sheet, nullptr, open * 1000, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
            ++open;
            EXPECT_TRUE(isOpen(3));
            const std::lock_guard lock(turn);
            Choose(sheet, kAllPages);
            Press(sheet, IDOK);
            for (int i = 0; i < 20000 && IsWindow(sheet) != FALSE; ++i)
            {
                Sleep(1);
            }
        };
        EXPECT_EQ(IDOK, printer.Prompt(deed));
        EXPECT_EQ(settings, printer.Settings());
    };
    std::thread one(show, kPrinter, kAllChosen);
    EXPECT_TRUE(isOpen(1));
    std::thread other(show, kMirror, "2 8 -4 7 3 6 Confidential psk:LeftBottom psk:StapleDualLeft");
    EXPECT_TRUE(isOpen(2));
    show(kPrinter, kAllChosen);
    one.join();
    other.join();
}

TEST_F(Preferences, CanBeSetWithPrintctl)
{
    namespace user = preferences_user;
    const struct
    {
        std::vector<std::wstring> options;
        int button, code;
        std::wstring portrait, landscape; // in the language of the dialog
    } cases[] = {{{}, IDOK, 0, L"Portrait", L"Landscape"},
                 {{L"--language", L"DE-de"}, IDOK, 0, L"Hochformat", L"Querformat"},
                 {{}, IDCANCEL, 5, L"Portrait", L"Landscape"}};
    const fs::path file = Folder() / L"settings.bin";
    const auto stateWithoutLogs = []
    {
        auto state = printctl_tests::ReadSystemState();
        std::erase_if(state, [](const auto& one) { return one.first.find("\\logs") != std::string::npos; });
        return state;
    };
    const auto before = stateWithoutLogs();
    for (const auto& one : cases)
    {
        std::vector<std::wstring> arguments{L"preferences", kPrinter, L"--out", file};
        arguments.insert(arguments.end(), one.options.begin(), one.options.end());
        std::thread thread(
            [&one]
            {
                HWND sheet = nullptr;
                ASSERT_TRUE(user::WaitUntil([&] { return (sheet = user::FindSheet()) != nullptr; }));
                const HWND list = user::PageControl(sheet, IDC_ORIENTATION);
                wchar_t chosen[32] = {};
                SendMessageW(list, WM_GETTEXT, 32, reinterpret_cast<LPARAM>(chosen));
                EXPECT_EQ(one.portrait, chosen);
                EXPECT_TRUE(user::Choose(list, one.landscape));
                EXPECT_TRUE(user::CloseWith(sheet, one.button));
            });
        const auto [code, out, error] = printctl_tests::RunPrintctl(arguments);
        thread.join();
        EXPECT_EQ(one.code, code) << error;
        const std::string expected = code == 0 ? "OK was pressed. Changed:\n" : "the dialog was cancelled";
        EXPECT_NE(std::string::npos, (out + error).find(expected)) << out << error;
        const std::string bytes = printctl_tests::ReadText(file);
        ASSERT_EQ(code == 0 ? Printer(kPrinter).settings.size() : 0, bytes.size());
        EXPECT_TRUE(code != 0 || reinterpret_cast<const DEVMODEW*>(bytes.data())->dmOrientation == DMORIENT_LANDSCAPE);
        fs::remove(file);
    }
    EXPECT_TRUE(before == stateWithoutLogs());
}

// The highest index of a table that many new objects get, the same at any time if nothing has stayed in the table.
template <typename Create, typename Close>
size_t HighestIndex(const Create& create, const Close& close)
{
    std::vector<decltype(create())> made(2000);
    size_t highest = 0;
    for (auto& one : made)
    {
        one = create();
        highest = std::max(highest, reinterpret_cast<uintptr_t>(one) & 0xFFFF);
    }
    std::for_each(made.begin(), made.end(), close);
    return highest;
}

PROCESS_MEMORY_COUNTERS MemoryCounters()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return counters;
}

// What the process has. Wine counts no handles for it.
struct Resources
{
    size_t blocks = BusyBlocks();
    size_t handles = HighestIndex([] { return CreateEventW(nullptr, FALSE, FALSE, nullptr); }, CloseHandle) / 4;
    size_t gdi = HighestIndex([] { return CreateSolidBrush(1); }, DeleteObject);
    size_t user = HighestIndex(CreateMenu, DestroyMenu) / 2;
    size_t bytes = MemoryCounters().PagefileUsage;
};

TEST_F(Preferences, OpenManyTimesWithoutGrowth)
{
    const std::array kVisited = {kAllPages[3], kAllPages[6], kAllPages[7], kAllPages[8]};
    Printer printer(kPrinter);
    const auto open = [&](size_t times)
    {
        for (size_t i = 0; i < times; ++i)
        {
            const int button = i % 2 == 0 ? IDOK : IDCANCEL;
            // Each of the pages that do not come up by themselves is made more often than what the system may keep.
            const Choices choices(i % 4 == 0 ? 1 : 0, kVisited[i / 4 % kVisited.size()]);
            EXPECT_EQ(button, printer.Prompt(ChooseAndPress(choices, button)));
        }
        return Resources();
    };
    open(50);
    const Resources before = open(50);
    const Resources after = open(500);
    constexpr size_t kOwn = 25; // what the system keeps once
    EXPECT_LE(after.blocks, before.blocks + kOwn);
    EXPECT_LE(after.handles, before.handles + kOwn);
    EXPECT_LE(after.gdi, before.gdi + kOwn);
    EXPECT_LE(after.user, before.user + kOwn);
    EXPECT_LE(after.bytes, before.bytes + 500 * 16 * 1024); // which goes up and down by itself
}

constexpr wchar_t kManner[] = L"TESSARY_SERVICE_MANNER"; // the function that never answers; none for a slow service
constexpr DWORD kDelay = 50;
constexpr UINT kPatience = 10000;
constexpr int kEnded = 7;

// The exit code of the test below in a process of its own with such a service; -1 when it does not end.
int RunWithService(const wchar_t* manner)
{
    SetEnvironmentVariableW(kManner, manner);
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    const auto process = reinterpret_cast<HANDLE>(_wspawnl(
        _P_NOWAIT, program, L"child", L"--gtest_also_run_disabled_tests", L"--gtest_filter=BadService.*", nullptr));
    DWORD code = 0;
    const bool ended = WaitForSingleObject(process, 60000) == WAIT_OBJECT_0;
    ended ? GetExitCodeProcess(process, &code) : TerminateProcess(process, 1);
    CloseHandle(process);
    return ended ? static_cast<int>(code) : -1;
}

TEST_F(Preferences, ComeFromASlowServiceAndLetTheHostEndWithADeadOne)
{
    EXPECT_EQ(0, RunWithService(L""));
    // On the sheet's own thread, and on the one that asks for the capabilities.
    for (const wchar_t* function : {L"VpGetDevMode", L"VpMakePTQuery"})
    {
        EXPECT_EQ(kEnded, RunWithService(function)) << fs::path(function);
    }
}

void ExpectPainted(HWND sheet)
{
    DWORD_PTR result = 0;
    EXPECT_TRUE(SendMessageTimeoutW(sheet, WM_NULL, 0, 0, SMTO_NORMAL, kPatience, &result));
    const HWND page = PageOf(sheet);
    InvalidateRect(page, nullptr, TRUE);
    for (UINT i = 0; i < kPatience && GetUpdateRect(page, nullptr, FALSE); ++i)
    {
        Sleep(1);
    }
    EXPECT_FALSE(GetUpdateRect(page, nullptr, FALSE));
}

TEST(BadService, DISABLED_InAProcessOfItsOwn)
{
    // Loaded before the module, which then takes it for the installed one.
    const HMODULE service = LoadLibraryW((ProgramFolder() / L"tests" / L"ui" / L"tsyprserverapi.dll").c_str());
    const auto setManners = reinterpret_cast<int(WINAPI*)(DWORD delay, const char* endless)>(
        reinterpret_cast<void*>(GetProcAddress(service, "SetServiceManners")));
    ASSERT_NE(nullptr, setManners);
    static char endless[32] = {};
    GetEnvironmentVariableA(fs::path(kManner).string().c_str(), endless, sizeof(endless));
    Printer printer(kPrinter);
    if (*endless != '\0')
    {
        setManners(0, endless);
        std::thread([&] { printer.Prompt(ChooseAndPress(kAllPages, IDOK)); }).detach();
        for (int i = 0; i < 20000 && setManners(0, endless) >= 0; ++i)
        {
            Sleep(1);
        }
        ASSERT_LT(setManners(0, endless), 0);
        ExitProcess(kEnded);
    }
    const int before = setManners(kDelay, "");
    const ULONGLONG begin = GetTickCount64();
    const auto deed = [&](HWND sheet)
    {
        const auto shown = static_cast<int>(GetTickCount64() - begin);
        const int calls = setManners(kDelay, "") - before;
        std::cout << calls << " calls, and " << shown - calls * int{kDelay} << " ms more\n";
        EXPECT_EQ(24, calls);
        EXPECT_LT(shown, calls * int{kDelay} + 10000); // hardly any is the module's, but the machine may be busy
        ExpectPainted(sheet);
        Choose(sheet, {{1, IDC_PAPER_SIZE, 1}});
        ExpectPainted(sheet);
        Press(sheet, IDOK);
    };
    EXPECT_EQ(IDOK, printer.Prompt(deed));
    EXPECT_EQ(8, printer.Get()->dmPaperSize);
}

} // namespace
} // namespace tsypr::test
