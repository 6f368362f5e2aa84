// Printing from programs that Wine ships: their user, who is this other process, opens the printing preferences from
// the program's own dialogs, changes every page and presses OK; the program has the choices from then on.
#include "language/resource_ids.h"
#include "tools/page_pictures/window_picture.h"
#include "tools/preferences_user/sheet_user.h"

#include <dlgs.h>
#include <winspool.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>

namespace tsypr::application_tests
{
namespace
{

namespace fs = std::filesystem;
using namespace tsypr::preferences_user;

constexpr wchar_t kNotepad[] = LR"("C:\windows\notepad.exe" C:\windows\win.ini)";
constexpr wchar_t kWordpad[] = LR"("C:\Program Files\Windows NT\Accessories\wordpad.exe" C:\windows\win.ini)";
// In the system's print dialogs.
constexpr int kPreferences = psh2;
constexpr int kPrinter = psh3;
constexpr int kNone = 0;

struct Case
{
    const char* name;
    const wchar_t* program;
    WORD command;    // of the program's menu
    int button;      // in the dialog that comes, which leads to the next one; kNone if it is the right one
    int printerList; // of the dialog with the preferences
    bool prints;     // on OK
};

const Case kCases[] = {
    {"NotepadPrint", kNotepad, 260, kNone, cmb4, true},
    {"NotepadPrinterSetup", kNotepad, 262, kNone, cmb1, false},
    {"WordpadPrint", kWordpad, 1010, kNone, cmb4, true},
    {"WordpadPageSetup", kWordpad, 1012, kPrinter, cmb4, false},
};

// The lists that the user changes: a page, and those on it. The paper source is not among them: Wine's page setup puts
// one of its own into the settings.
const std::map<int, std::vector<int>> kLists = {
    {0, {IDC_ORIENTATION, IDC_DUPLEX, IDC_PAGES_PER_SHEET, IDC_PAGE_ORDER}},
    {1, {IDC_PAPER_SIZE, IDC_COLOR, IDC_PRINT_QUALITY}},
    {2, {IDC_COMPRESSION}},
    {3, {IDC_STAPLE, IDC_PUNCH}},
    {4, {IDC_WATERMARK_TEXT}},
};

using Choices = std::map<int, std::wstring>;

std::wstring ChosenIn(HWND list)
{
    wchar_t text[256] = L"";
    SendMessageW(list, WM_GETTEXT, 256, reinterpret_cast<LPARAM>(text));
    return text;
}

// The entry before the one that is chosen, or the last one.
std::wstring AnotherOf(HWND list)
{
    const LRESULT chosen = SendMessageW(list, CB_GETCURSEL, 0, 0);
    const LRESULT other = chosen > 0 ? chosen - 1 : SendMessageW(list, CB_GETCOUNT, 0, 0) - 1;
    wchar_t text[256] = L"";
    SendMessageW(list, CB_GETLBTEXT, static_cast<WPARAM>(other), reinterpret_cast<LPARAM>(text));
    return text;
}

using WindowVisitor = std::function<bool(HWND)>; // false ends the visit

BOOL CALLBACK Visit(HWND window, LPARAM visitor)
{
    return (*reinterpret_cast<const WindowVisitor*>(visitor))(window) ? TRUE : FALSE;
}

// A program that Wine ships, as its user sees it. It runs until the end of the object, whatever it shows then.
class Application
{
public:
    explicit Application(std::wstring commandLine)
    {
        STARTUPINFOW start{};
        start.cb = sizeof(start);
        CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &m_process);
    }
    ~Application()
    {
        TerminateProcess(m_process.hProcess, 0);
        WaitForSingleObject(m_process.hProcess, INFINITE);
        CloseHandle(m_process.hThread);
        CloseHandle(m_process.hProcess);
    }
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    bool IsRunning() const
    {
        return WaitForSingleObject(m_process.hProcess, 0) == WAIT_TIMEOUT;
    }

    // Chooses a command of the main window's menu, as soon as the window takes input.
    bool Command(WORD command) const
    {
        const HWND window = WaitForWindow([](HWND candidate) { return GetMenu(candidate) != nullptr; });
        return window != nullptr && PostMessageW(window, WM_COMMAND, command, 0) != FALSE;
    }

    // Waits for a dialog that takes input and has this control; null if none comes.
    HWND DialogWith(int control) const
    {
        return WaitForWindow([control](HWND window) { return GetDlgItem(window, control) != nullptr; });
    }

private:
    HWND WaitForWindow(const std::function<bool(HWND)>& isWanted) const
    {
        HWND found = nullptr;
        const WindowVisitor look = [&](HWND window)
        {
            DWORD process = 0;
            GetWindowThreadProcessId(window, &process);
            const bool takesInput = IsWindowVisible(window) != FALSE && IsWindowEnabled(window) != FALSE;
            found = process == m_process.dwProcessId && takesInput && isWanted(window) ? window : nullptr;
            return found == nullptr;
        };
        WaitUntil([&] { return EnumWindows(Visit, reinterpret_cast<LPARAM>(&look)) == FALSE || !IsRunning(); });
        return found;
    }

    PROCESS_INFORMATION m_process{};
};

// The imported printer where there is one, and one of our own otherwise; the system's default printer from here on.
std::wstring ProductPrinter()
{
    for (const wchar_t* const name : {L"Ricoh MP C4503", L"Studio Color"})
    {
        if (SetDefaultPrinterW(name) != FALSE)
        {
            return name;
        }
    }
    return {};
}

// Where tests/apps/run_on_display.sh has the printers print to.
fs::path Folder()
{
    const wchar_t* const folder = _wgetenv(L"TESSARY_APPLICATIONS");
    return folder != nullptr ? folder : L"";
}

fs::path PrintedFile()
{
    return Folder() / L"printed.ps";
}

std::string ReadText(const fs::path& file)
{
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

class ApplicationTest : public testing::TestWithParam<Case>
{
protected:
    void TearDown() override
    {
        if (HasFailure())
        {
            const fs::path picture = Folder() / (std::string(GetParam().name) + ".bmp");
            const bool isSaved = pictures::SaveWindowPicture(GetDesktopWindow(), picture);
            ADD_FAILURE() << (isSaved ? "The screen is in " + picture.string() : "There is no picture of the screen")
                          << ".";
        }
    }

    const Application& Program() const
    {
        return m_application;
    }

    // Opens the program's dialog and chooses the printer.
    bool OpenDialog() const
    {
        const Case& one = GetParam();
        if (!m_application.Command(one.command))
        {
            return false;
        }
        if (one.button != kNone && !Click(GetDlgItem(m_application.DialogWith(one.button), one.button)))
        {
            return false;
        }
        const HWND printers = GetDlgItem(Dialog(), one.printerList);
        // Choosing a printer again makes a dialog forget its settings.
        return ChosenIn(printers) == m_printer || Choose(printers, m_printer);
    }

    // The dialog, as soon as it takes input.
    HWND Dialog() const
    {
        return m_application.DialogWith(GetParam().printerList);
    }

    HWND OpenPreferences() const
    {
        HWND sheet = nullptr;
        return Click(GetDlgItem(Dialog(), kPreferences)) &&
                       WaitUntil([&] { return (sheet = FindSheet()) != nullptr || !m_application.IsRunning(); })
                   ? sheet
                   : nullptr;
    }

    static Choices ReadChoices(HWND sheet)
    {
        Choices choices;
        for (const auto& [page, lists] : kLists)
        {
            EXPECT_TRUE(ShowPage(sheet, page));
            for (const int list : lists)
            {
                choices[list] = ChosenIn(PageControl(sheet, list));
            }
        }
        return choices;
    }

    static Choices ChangeChoices(HWND sheet)
    {
        for (const auto& [page, lists] : kLists)
        {
            EXPECT_TRUE(ShowPage(sheet, page));
            for (const int list : lists)
            {
                const HWND control = PageControl(sheet, list);
                const std::wstring before = ChosenIn(control);
                EXPECT_TRUE(Choose(control, AnotherOf(control))) << list;
                EXPECT_NE(ChosenIn(control), before) << list;
            }
        }
        return ReadChoices(sheet);
    }

    // The preferences show these; what the user changes in them without pressing OK has no effect.
    void ExpectChoices(const Choices& expected) const
    {
        const HWND sheet = OpenPreferences();
        ASSERT_NE(sheet, nullptr);
        EXPECT_EQ(ReadChoices(sheet), expected);
        ChangeChoices(sheet);
        ASSERT_TRUE(CloseWith(sheet, IDCANCEL));
    }

private:
    const std::wstring m_printer = ProductPrinter();
    Application m_application{GetParam().program};
};

TEST_P(ApplicationTest, HasWhatItsUserChose)
{
    const Case& one = GetParam();
    fs::remove(PrintedFile());
    ASSERT_TRUE(OpenDialog());
    const HWND sheet = OpenPreferences();
    ASSERT_NE(sheet, nullptr);
    const Choices chosen = ChangeChoices(sheet);
    ASSERT_TRUE(CloseWith(sheet, IDOK));
    ASSERT_NO_FATAL_FAILURE(ExpectChoices(chosen));
    ASSERT_TRUE(CloseWith(Dialog(), IDOK));
    if (one.button != kNone)
    {
        ASSERT_TRUE(CloseWith(Program().DialogWith(one.button), IDOK));
    }
    ASSERT_TRUE(OpenDialog());
    ASSERT_NO_FATAL_FAILURE(ExpectChoices(chosen));
    if (one.prints)
    {
        EXPECT_TRUE(WaitUntil([] { return ReadText(PrintedFile()).find("%%EOF") != std::string::npos; }));
        const std::string orientation = chosen.at(IDC_ORIENTATION) == L"Landscape" ? "Landscape" : "Portrait";
        EXPECT_NE(ReadText(PrintedFile()).find("%%Orientation: " + orientation), std::string::npos);
    }
}

INSTANTIATE_TEST_SUITE_P(Programs,
                         ApplicationTest,
                         testing::ValuesIn(kCases),
                         [](const testing::TestParamInfo<Case>& one) { return std::string(one.param.name); });

} // namespace
} // namespace tsypr::application_tests
