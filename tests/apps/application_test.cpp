// Printing from programs that Wine ships: their user, who is this other process, opens the printing preferences from
// the program's own dialogs, changes every page and presses OK; the program has the choices from then on.
#include "language/resource_ids.h"
#include "tests/apps/application.h"
#include "tools/page_pictures/window_picture.h"
#include "tools/preferences_user/sheet_user.h"

#include <dlgs.h>
#include <winspool.h>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

namespace tsypr::application_tests
{
namespace
{

namespace fs = std::filesystem;
using namespace tsypr::preferences_user;

constexpr wchar_t kNotepad[] = L"C:\\windows\\notepad.exe";
constexpr wchar_t kWordpad[] = L"C:\\Program Files\\Windows NT\\Accessories\\wordpad.exe";
// Of the system's dialogs.
constexpr int kPrinterButton = psh3;
constexpr int kPreferencesButton = psh2;
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
    {"WordpadPageSetup", kWordpad, 1012, kPrinterButton, cmb4, false},
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

std::wstring TextOf(HWND list)
{
    wchar_t text[256] = L"";
    SendMessageW(list, WM_GETTEXT, 256, reinterpret_cast<LPARAM>(text));
    return text;
}

// The entry before the one that is chosen, or the last one.
std::wstring AnotherEntry(HWND list)
{
    const LRESULT index = SendMessageW(list, CB_GETCURSEL, 0, 0);
    const LRESULT count = SendMessageW(list, CB_GETCOUNT, 0, 0);
    wchar_t text[256] = L"";
    SendMessageW(
        list, CB_GETLBTEXT, static_cast<WPARAM>(index > 0 ? index - 1 : count - 1), reinterpret_cast<LPARAM>(text));
    return text;
}

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
                          << ". Its windows:\n"
                          << DescribeScreen();
        }
    }

    const Application& Program() const
    {
        return m_application;
    }

    // The program's dialog with the printer chosen, or null.
    HWND OpenDialog() const
    {
        const Case& one = GetParam();
        if (!m_application.Command(one.command))
        {
            return nullptr;
        }
        if (one.button != kNone && !Click(GetDlgItem(m_application.DialogWith(one.button), one.button)))
        {
            return nullptr;
        }
        const HWND dialog = m_application.DialogWith(one.printerList);
        const HWND printers = GetDlgItem(dialog, one.printerList);
        // Choosing a printer again makes a dialog forget its settings.
        const bool isChosen = TextOf(printers) == m_printer || Choose(printers, m_printer);
        return isChosen ? dialog : nullptr;
    }

    HWND OpenPreferences(HWND dialog) const
    {
        HWND sheet = nullptr;
        return Click(GetDlgItem(dialog, kPreferencesButton)) &&
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
                choices[list] = TextOf(PageControl(sheet, list));
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
                EXPECT_TRUE(Choose(control, AnotherEntry(control))) << list;
            }
        }
        return ReadChoices(sheet);
    }

    // The preferences show these; what the user changes in them without pressing OK has no effect.
    void ExpectChoices(HWND dialog, const Choices& expected) const
    {
        const HWND sheet = OpenPreferences(dialog);
        ASSERT_NE(sheet, nullptr);
        EXPECT_EQ(ReadChoices(sheet), expected);
        ChangeChoices(sheet);
        ASSERT_TRUE(CloseSheet(sheet, IDCANCEL));
    }

private:
    const std::wstring m_printer = ProductPrinter();
    Application m_application{GetParam().program, L"C:\\windows\\win.ini"};
};

TEST_P(ApplicationTest, HasWhatItsUserChose)
{
    const Case& one = GetParam();
    fs::remove(PrintedFile());
    HWND dialog = OpenDialog();
    ASSERT_NE(dialog, nullptr);
    const HWND sheet = OpenPreferences(dialog);
    ASSERT_NE(sheet, nullptr);
    const Choices chosen = ChangeChoices(sheet);
    ASSERT_TRUE(CloseSheet(sheet, IDOK));
    ASSERT_NO_FATAL_FAILURE(ExpectChoices(dialog, chosen));
    ASSERT_TRUE(Click(GetDlgItem(dialog, IDOK)));
    if (one.button != kNone)
    {
        ASSERT_TRUE(Click(GetDlgItem(Program().DialogWith(one.button), IDOK)));
    }
    dialog = OpenDialog();
    ASSERT_NE(dialog, nullptr);
    ASSERT_NO_FATAL_FAILURE(ExpectChoices(dialog, chosen));
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
