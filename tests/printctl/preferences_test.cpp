// "printctl preferences" and a user who presses a button in its dialog.
#include "tests/printctl/printctl_fixture.h"

#include <windows.h>

#include <prsht.h>

#include <thread>

namespace tsypr::printctl_tests
{

namespace
{

constexpr int kNoButton = 0;

BOOL CALLBACK PressIn(HWND window, LPARAM button)
{
    wchar_t name[16] = {};
    GetClassNameW(window, name, 16);
    const HWND control = GetDlgItem(window, static_cast<int>(button));
    if (std::wstring(name) != L"#32770" || IsWindowVisible(window) == FALSE || control == nullptr ||
        SendMessageW(window, PSM_GETCURRENTPAGEHWND, 0, 0) == 0)
    {
        return TRUE;
    }
    PostMessageW(control, BM_CLICK, 0, 0);
    return FALSE;
}

// Presses the button in the property sheet that another program shows, as long as the thread lives.
std::jthread StartUser(int button)
{
    return std::jthread(
        [button](const std::stop_token& stop)
        {
            while (!stop.stop_requested() && (button == kNoButton || EnumWindows(PressIn, button) != FALSE))
            {
                Sleep(10);
            }
        });
}

struct Case
{
    int button;
    std::vector<std::wstring> options;
    int code;
    const char* message; // on standard output after OK, else on standard error
    int copies;          // in the file; 0 for no file
};

const Case kCases[] = {
    {IDOK, {}, 0, "copies  1       12", 12},
    {IDOK, {L"--language", L"DE-de"}, 0, "copies  1       34", 34},
    {IDCANCEL, {}, 5, "cancelled", 0},
    {kNoButton, {L"--language", L"xx-yy"}, 2, "\"xx-yy\" is no installed language (installed: de-de, en-us)", 0},
};

TEST(PreferencesTest, ShowsAndStoresWhatTheUserMadeOfTheSettings)
{
    const DriverFolder folder;
    folder.PlaceLibrary(L"printctl_test_empty.dll", L"tsyprUI_de_de_407.dll");
    ASSERT_EQ(folder.Install().code, 0);
    const fs::path file = folder.Path() / L"preferences.bin";
    const SystemState before = ReadSystemState();
    for (const Case& one : kCases)
    {
        SCOPED_TRACE(one.message);
        fs::remove(file);
        std::vector<std::wstring> arguments{L"preferences", L"Alpha", L"--out", file.wstring()};
        arguments.insert(arguments.end(), one.options.begin(), one.options.end());
        const std::jthread user = StartUser(one.button);
        const Outcome outcome = RunPrintctl(arguments);
        EXPECT_EQ(outcome.code, one.code) << outcome.error;
        EXPECT_NE((one.code == 0 ? outcome.out : outcome.error).find(one.message), std::string::npos)
            << outcome.out << outcome.error;
        const std::string bytes = ReadText(file);
        EXPECT_EQ(bytes.size(), one.copies == 0 ? 0U : 220U + 8 + 1112);
        EXPECT_EQ(one.copies == 0 ? 0 : reinterpret_cast<const DEVMODEW*>(bytes.data())->dmCopies, one.copies);
    }
    EXPECT_EQ(ReadSystemState(), before);
    EXPECT_EQ(RunPrintctl({L"remove"}).code, 0);
}

} // namespace

} // namespace tsypr::printctl_tests
