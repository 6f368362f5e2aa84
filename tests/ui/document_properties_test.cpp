// Printing preferences as an application shows them: Windows' own functions, the installed module, the reference
// service and our property sheet interface, with a user on a second thread.
#include "language/resource_ids.h"
#include "remote/private_devmode.h"
#include "tests/compstui/sheet_fixture.h"
#include "tests/printctl/printctl_fixture.h"
#include "tools/compstui/contract_exports.h"

#include <prsht.h>
#include <winspool.h>

#include <sstream>

namespace tsypr::test
{
namespace
{

constexpr wchar_t kDocumentClass[] =
    L"Software\\Classes\\CLSID\\{88D96A05-F192-11D4-A65F-0040963251E5}\\InprocServer32";

// What a user does: a page and one of its lists, and the entry to choose.
struct Choice
{
    int page;
    int control;
    WPARAM entry;
};

// Waits for the sheet of a thread, makes the choices and presses the button.
class ChoosingUser
{
public:
    ChoosingUser(std::vector<Choice> choices, int button, DWORD sheetThread = GetCurrentThreadId())
        : m_thread(
              [choices = std::move(choices), button, sheetThread]
              {
                  HWND sheet = nullptr;
                  for (int i = 0; i < 10000 && sheet == nullptr; ++i)
                  {
                      Sleep(1);
                      sheet = compstui_tests::FindSheet(sheetThread);
                  }
                  ASSERT_NE(sheet, nullptr);
                  const std::vector<std::wstring> tabs = {
                      L"Layout", L"Paper/Quality", L"Advanced", L"Finishing", L"Watermark"};
                  EXPECT_EQ(tabs, compstui_tests::GetTabs(sheet));
                  for (const Choice& choice : choices)
                  {
                      Make(sheet, choice);
                  }
                  PostMessageW(sheet, PSM_PRESSBUTTON, static_cast<WPARAM>(button), 0);
              })
    {
    }
    ~ChoosingUser()
    {
        m_thread.join();
    }
    ChoosingUser(const ChoosingUser&) = delete;
    ChoosingUser& operator=(const ChoosingUser&) = delete;

private:
    static void Make(HWND sheet, const Choice& choice)
    {
        SendMessageW(sheet, PSM_SETCURSEL, static_cast<WPARAM>(choice.page), 0);
        const auto page = reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
        const HWND control = GetDlgItem(page, choice.control);
        ASSERT_NE(control, nullptr) << choice.control;
        EXPECT_TRUE(IsWindowEnabled(control)) << choice.control;
        if (choice.control == IDC_COPIES)
        {
            SetDlgItemInt(page, IDC_COPIES, static_cast<UINT>(choice.entry), FALSE);
            return;
        }
        EXPECT_GE(SendMessageW(control, CB_SETCURSEL, choice.entry, 0), 0);
        SendMessageW(page, WM_COMMAND, MAKEWPARAM(choice.control, CBN_SELCHANGE), reinterpret_cast<LPARAM>(control));
    }

    std::thread m_thread;
};

constexpr wchar_t kPrinter[] = L"Studio Color";
const std::vector<Choice> kChoices = {{0, IDC_ORIENTATION, 1},
                                      {0, IDC_PAGES_PER_SHEET, 2},
                                      {1, IDC_PAPER_SIZE, 1},
                                      {1, IDC_PRINT_QUALITY, 3},
                                      {2, IDC_COPIES, 7},
                                      {2, IDC_COMPRESSION, 3},
                                      {3, IDC_STAPLE, 1},
                                      {4, IDC_WATERMARK_TEXT, 1}};

class Preferences : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        wchar_t program[MAX_PATH];
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        const std::wstring repair = std::filesystem::path(program).parent_path() / L"tsydomrepair.dll";
        const auto bytes = static_cast<DWORD>((repair.size() + 1) * sizeof(wchar_t));
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, kDocumentClass, nullptr, REG_SZ, repair.c_str(), bytes);
        const auto installed = printctl_tests::RunPrintctl({L"install"});
        ASSERT_EQ(installed.code, 0) << installed.error;
    }
    static void TearDownTestSuite()
    {
        printctl_tests::RunPrintctl({L"remove"});
    }

    // Shows the sheet for the printer's own settings and gives the answer, the button.
    static LONG Prompt(int button)
    {
        std::wstring name = kPrinter;
        HANDLE printer = nullptr;
        EXPECT_TRUE(OpenPrinterW(name.data(), &printer, nullptr));
        const auto ask = [&](DEVMODEW* dm, DWORD mode)
        { return DocumentPropertiesW(nullptr, printer, name.data(), dm, dm, mode); };
        s_settings.resize(static_cast<size_t>(ask(nullptr, 0)));
        auto* dm = reinterpret_cast<DEVMODEW*>(s_settings.data());
        EXPECT_EQ(IDOK, ask(dm, DM_OUT_BUFFER));
        const ChoosingUser user(kChoices, button);
        const LONG answer = ask(dm, DM_IN_PROMPT | DM_IN_BUFFER | DM_OUT_BUFFER);
        ClosePrinter(printer);
        return answer;
    }
    static std::string Settings()
    {
        const auto* dm = reinterpret_cast<const DEVMODEW*>(s_settings.data());
        const PrivateDevMode* block = GetPrivateDevMode(dm);
        std::ostringstream text;
        text << dm->dmOrientation << ' ' << dm->dmPaperSize << ' ' << dm->dmPrintQuality << ' ' << dm->dmCopies << ' '
             << block->compression << ' ' << block->pagesPerSheet << ' ' << static_cast<char>(block->watermark[100])
             << ' ' << std::filesystem::path(block->staple.Read().text).string();
        return text.str();
    }
    static DWORD ContractFaults()
    {
        const HMODULE used = GetModuleHandleW(L"compstui.dll");
        const auto faults = reinterpret_cast<decltype(&CompstuiContractFaults)>(
            reinterpret_cast<void*>(GetProcAddress(used, "CompstuiContractFaults")));
        return faults != nullptr ? faults() : ~DWORD{0};
    }

    inline static thread_local std::vector<BYTE> s_settings;
};

TEST_F(Preferences, ReachTheApplicationWhenTheUserConfirms)
{
    EXPECT_EQ(IDCANCEL, Prompt(PSBTN_CANCEL));
    EXPECT_TRUE(Settings().starts_with("1 9 -3 1 2 1 ")) << Settings();
    EXPECT_EQ(IDOK, Prompt(PSBTN_OK));
    EXPECT_EQ("2 8 -4 7 3 4 C psk:StapleTopLeft", Settings());
    EXPECT_EQ(0U, ContractFaults());
}

TEST_F(Preferences, MayBeOpenTwiceAtOnce)
{
    std::thread sheets[2];
    for (std::thread& sheet : sheets)
    {
        sheet = std::thread(
            []
            {
                EXPECT_EQ(IDOK, Prompt(PSBTN_OK));
                EXPECT_EQ("2 8 -4 7 3 4 C psk:StapleTopLeft", Settings());
            });
    }
    for (std::thread& sheet : sheets)
    {
        sheet.join();
    }
    EXPECT_EQ(0U, ContractFaults());
}

} // namespace
} // namespace tsypr::test
