#include "tests/compstui/sheet_fixture.h"

#include "tools/compstui/contract_exports.h"

#include <commctrl.h>

#include <array>
#include <filesystem>

#include <gtest/gtest.h>

namespace tsypr::compstui_tests
{
namespace
{

constexpr DWORD kPatience = 30000;

BOOL CALLBACK KeepSheet(HWND window, LPARAM found)
{
    const bool isSheet = IsWindowVisible(window) != FALSE && SendMessageW(window, PSM_GETTABCONTROL, 0, 0) != 0 &&
                         SendMessageW(window, PSM_GETCURRENTPAGEHWND, 0, 0) != 0;
    if (isSheet)
    {
        *reinterpret_cast<HWND*>(found) = window;
    }
    return !isSheet;
}

} // namespace

LONG CALLBACK Describer::Call(PROPSHEETUI_INFO* info, LPARAM lParam)
{
    return reinterpret_cast<Describer*>(info->lParamInit)->Answer(*info, lParam);
}

LONG Describer::Answer(PROPSHEETUI_INFO& info, LPARAM lParam)
{
    static constexpr std::array kReasons = {"INIT", "HEADER", "DESTROY", "RESULT", "ICON", "BEFORE_INIT"};
    const std::string reason = info.Reason < kReasons.size() ? kReasons.at(info.Reason) : "?";
    events.push_back(name + reason);
    EXPECT_EQ(info.cbSize, sizeof(info)) << reason;
    EXPECT_EQ(info.Version, PROPSHEETUI_INFO_VERSION) << reason;
    EXPECT_EQ(info.Flags, flags) << reason;
    EXPECT_EQ(info.UserData, userData) << reason;
    EXPECT_EQ(info.Result, result) << reason;
    group = group != nullptr ? group : info.hComPropSheet;
    comPropSheet = info.pfnComPropSheet;
    EXPECT_EQ(info.hComPropSheet, group) << reason;
    EXPECT_NE(comPropSheet, nullptr) << reason;
    const auto action = on.find(info.Reason);
    const LONG answer = action != on.end() ? action->second(info, lParam) : 1;
    userData = info.UserData;
    result = info.Result;
    return answer;
}

INT_PTR CALLBACK Page::Proc(HWND dialog, UINT message, WPARAM, LPARAM lParam)
{
    if (message == WM_INITDIALOG)
    {
        auto* page = reinterpret_cast<Page*>(reinterpret_cast<const PROPSHEETPAGEW*>(lParam)->lParam);
        SetWindowLongPtrW(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(page));
        if (page->onInit)
        {
            page->onInit(dialog);
        }
        return TRUE;
    }
    auto* page = reinterpret_cast<Page*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (message != WM_NOTIFY || page == nullptr)
    {
        return FALSE;
    }
    const auto& notice = *reinterpret_cast<const PSHNOTIFY*>(lParam);
    const int code = static_cast<int>(notice.hdr.code);
    const std::map<int, std::string> names = {{static_cast<int>(PSN_APPLY), "apply"},
                                              {static_cast<int>(PSN_RESET), "reset"}};
    if (const auto name = names.find(code); name != names.end())
    {
        page->describer.events.push_back(name->second);
    }
    const auto action = page->on.find(code);
    SetWindowLongPtrW(dialog, DWLP_MSGRESULT, action != page->on.end() ? action->second(dialog, notice) : 0);
    return TRUE;
}

LONG_PTR Page::Ask(UINT function, LPARAM first, LPARAM second) const
{
    return describer.comPropSheet(describer.group, function, first, second);
}

HANDLE Page::Add()
{
    handle = reinterpret_cast<HANDLE>(Ask(CPSFUNC_ADD_PROPSHEETPAGEW, reinterpret_cast<LPARAM>(&record)));
    return handle;
}

User::User(Deed deed, DWORD sheetThread)
    : m_thread(
          [deed = std::move(deed), sheetThread]
          {
              HWND sheet = nullptr;
              for (const DWORD begin = GetTickCount(); sheet == nullptr && GetTickCount() - begin < kPatience; Sleep(1))
              {
                  sheet = FindSheet(sheetThread);
              }
              ASSERT_NE(sheet, nullptr) << "no property sheet";
              deed(sheet);
          })
{
}

User::User(std::vector<int> buttons, DWORD sheetThread)
    : User(
          [buttons = std::move(buttons)](HWND sheet)
          {
              for (const int button : buttons)
              {
                  Press(sheet, button);
              }
          },
          sheetThread)
{
}

User::~User()
{
    m_thread.join();
}

void Press(HWND sheet, int button)
{
    const HWND control = button == kCloseBox ? sheet : GetDlgItem(sheet, button);
    ASSERT_NE(control, nullptr) << "no button " << button;
    PostMessageW(control, button == kCloseBox ? WM_SYSCOMMAND : BM_CLICK, button == kCloseBox ? SC_CLOSE : 0, 0);
}

HWND FindSheet(DWORD thread)
{
    HWND sheet = nullptr;
    EnumThreadWindows(thread, KeepSheet, reinterpret_cast<LPARAM>(&sheet));
    return sheet;
}

std::vector<std::wstring> GetTabs(HWND sheet)
{
    const auto tabs = reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETTABCONTROL, 0, 0));
    std::vector<std::wstring> texts;
    const auto count = static_cast<WPARAM>(SendMessageW(tabs, TCM_GETITEMCOUNT, 0, 0));
    for (WPARAM i = 0; i < count; ++i)
    {
        wchar_t text[64] = {};
        TCITEMW item = {};
        item.mask = TCIF_TEXT;
        item.pszText = text;
        item.cchTextMax = 64;
        SendMessageW(tabs, TCM_GETITEMW, i, reinterpret_cast<LPARAM>(&item));
        texts.emplace_back(text);
    }
    return texts;
}

HMODULE Library()
{
    static const HMODULE library = []
    {
        wchar_t program[MAX_PATH];
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        const auto path = std::filesystem::path(program).parent_path() / L"environment" / L"compstui.dll";
        return LoadLibraryW(path.c_str());
    }();
    return library;
}

Outcome ShowSheet(Describer& describer, HWND owner)
{
    static const auto show = Export<decltype(&CommonPropertySheetUIW)>("CommonPropertySheetUIW");
    describer.group = nullptr;
    describer.userData = describer.result = 0;
    DWORD result = 0xdeadbeef;
    const LONG answer = show(owner, Describer::Call, describer.AsParam(), &result);
    return {answer, result};
}

DWORD Faults()
{
    static const auto count = Export<decltype(&CompstuiContractFaults)>("CompstuiContractFaults");
    return count();
}

std::string LastFault()
{
    static const auto text = Export<decltype(&CompstuiContractFaultText)>("CompstuiContractFaultText");
    char line[256] = {};
    text(Faults() - 1, line, sizeof(line));
    return line;
}

} // namespace tsypr::compstui_tests
