// Printing preferences as an application shows them: Windows' own functions, the installed module, the reference
// service and our property sheet interface, with a user on a second thread.
#include "language/resource_ids.h"
#include "remote/private_devmode.h"
#include "tests/compstui/sheet_fixture.h"
#include "tests/printctl/printctl_fixture.h"
#include "tools/compstui/contract_exports.h"

#include <prsht.h>
#include <winspool.h>

#include <cstring>

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
              [this, choices = std::move(choices), button, sheetThread]
              {
                  HWND sheet = nullptr;
                  for (int i = 0; i < 10000 && sheet == nullptr; ++i)
                  {
                      Sleep(1);
                      sheet = compstui_tests::FindSheet(sheetThread);
                  }
                  ASSERT_NE(sheet, nullptr);
                  tabs = compstui_tests::GetTabs(sheet);
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

    std::vector<std::wstring> tabs;

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

class Preferences : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        wchar_t program[MAX_PATH];
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        const std::wstring repair = std::filesystem::path(program).parent_path() / L"tsydomrepair.dll";
        RegSetKeyValueW(HKEY_LOCAL_MACHINE,
                        kDocumentClass,
                        nullptr,
                        REG_SZ,
                        repair.c_str(),
                        static_cast<DWORD>((repair.size() + 1) * sizeof(wchar_t)));
        const auto installed = printctl_tests::RunPrintctl({L"install"});
        ASSERT_EQ(installed.code, 0) << installed.error;
    }
    static void TearDownTestSuite()
    {
        printctl_tests::RunPrintctl({L"remove"});
    }

    // The sheet, with the settings put in first; the answer is the button.
    static LONG Prompt(std::vector<BYTE>& settings)
    {
        HANDLE printer = nullptr;
        EXPECT_TRUE(OpenPrinterW(s_name, &printer, nullptr));
        auto* dm = reinterpret_cast<DEVMODEW*>(settings.data());
        const LONG answer =
            DocumentPropertiesW(nullptr, printer, s_name, dm, dm, DM_IN_PROMPT | DM_IN_BUFFER | DM_OUT_BUFFER);
        ClosePrinter(printer);
        return answer;
    }
    // What the printer starts with.
    static std::vector<BYTE> Defaults()
    {
        HANDLE printer = nullptr;
        EXPECT_TRUE(OpenPrinterW(s_name, &printer, nullptr));
        const LONG size = DocumentPropertiesW(nullptr, printer, s_name, nullptr, nullptr, 0);
        std::vector<BYTE> settings(static_cast<size_t>(size));
        EXPECT_EQ(IDOK,
                  DocumentPropertiesW(
                      nullptr, printer, s_name, reinterpret_cast<DEVMODEW*>(settings.data()), nullptr, DM_OUT_BUFFER));
        ClosePrinter(printer);
        return settings;
    }
    static DWORD ContractFaults()
    {
        const HMODULE used = GetModuleHandleW(L"compstui.dll");
        const auto faults = reinterpret_cast<decltype(&CompstuiContractFaults)>(
            reinterpret_cast<void*>(GetProcAddress(used, "CompstuiContractFaults")));
        return faults != nullptr ? faults() : ~DWORD{0};
    }

    inline static wchar_t s_name[] = L"Studio Color";
    const std::vector<Choice> m_choices = {{0, IDC_ORIENTATION, 1},
                                           {0, IDC_DUPLEX, 2},
                                           {0, IDC_PAGES_PER_SHEET, 2},
                                           {0, IDC_PAGE_ORDER, 1},
                                           {1, IDC_PAPER_SIZE, 1},
                                           {1, IDC_PAPER_SOURCE, 2},
                                           {1, IDC_COLOR, 0},
                                           {1, IDC_PRINT_QUALITY, 3},
                                           {2, IDC_COPIES, 7},
                                           {2, IDC_COMPRESSION, 3},
                                           {3, IDC_STAPLE, 1},
                                           {4, IDC_WATERMARK_TEXT, 1}};
};

TEST_F(Preferences, ReachTheApplicationWhenTheUserConfirms)
{
    const std::vector<BYTE> defaults = Defaults();
    std::vector<BYTE> settings = defaults;
    {
        ChoosingUser user(m_choices, PSBTN_CANCEL);
        EXPECT_EQ(IDCANCEL, Prompt(settings));
    }
    const auto* dm = reinterpret_cast<const DEVMODEW*>(settings.data());
    EXPECT_EQ(DMORIENT_PORTRAIT, dm->dmOrientation);
    EXPECT_EQ(1, dm->dmCopies);
    settings = defaults;
    std::vector<std::wstring> tabs;
    {
        ChoosingUser user(m_choices, PSBTN_OK);
        EXPECT_EQ(IDOK, Prompt(settings));
        tabs = user.tabs;
    }
    EXPECT_EQ((std::vector<std::wstring>{L"Layout", L"Paper/Quality", L"Advanced", L"Finishing", L"Watermark"}), tabs);
    dm = reinterpret_cast<const DEVMODEW*>(settings.data());
    EXPECT_EQ(
        (std::vector<int>{DMORIENT_LANDSCAPE, DMDUP_HORIZONTAL, DMPAPER_A3, 258, DMCOLOR_MONOCHROME, DMRES_HIGH, 7}),
        (std::vector<int>{dm->dmOrientation,
                          dm->dmDuplex,
                          dm->dmPaperSize,
                          dm->dmDefaultSource,
                          dm->dmColor,
                          dm->dmPrintQuality,
                          dm->dmCopies}));
    EXPECT_STREQ(L"A3", dm->dmFormName);
    const PrivateDevMode* block = GetPrivateDevMode(dm);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(3U, block->compression);
    EXPECT_EQ(4U, block->pagesPerSheet);
    EXPECT_STRNE(L"psk:RightBottom", block->nupLayout.Read().text);
    EXPECT_STRNE(L"psk:None", block->staple.Read().text);
    wchar_t watermark[16] = {};
    std::memcpy(watermark, block->watermark + 100, sizeof(watermark) - sizeof(wchar_t));
    EXPECT_STREQ(L"Confidential", watermark);
    EXPECT_EQ(0U, ContractFaults());
}

TEST_F(Preferences, MayBeOpenTwiceAtOnce)
{
    std::thread sheets[2];
    for (std::thread& sheet : sheets)
    {
        sheet = std::thread(
            [this]
            {
                std::vector<BYTE> settings = Defaults();
                ChoosingUser user(m_choices, PSBTN_OK);
                EXPECT_EQ(IDOK, Prompt(settings));
                EXPECT_EQ(7, reinterpret_cast<const DEVMODEW*>(settings.data())->dmCopies);
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
