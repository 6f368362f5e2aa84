#include "tools/preferences_user/sheet_user.h"

#include <prsht.h>

#include <chrono>
#include <string_view>
#include <thread>

namespace tsypr::preferences_user
{
namespace
{

constexpr std::chrono::seconds kPatience{30};
constexpr std::chrono::milliseconds kPause{50};

BOOL CALLBACK KeepSheet(HWND window, LPARAM found)
{
    wchar_t name[16] = {};
    GetClassNameW(window, name, 16);
    const bool isSheet = std::wstring_view(name) == L"#32770" && IsWindowVisible(window) != FALSE &&
                         SendMessageW(window, PSM_GETCURRENTPAGEHWND, 0, 0) != 0;
    if (isSheet)
    {
        *reinterpret_cast<HWND*>(found) = window;
    }
    return static_cast<BOOL>(!isSheet);
}

} // namespace

bool WaitUntil(const std::function<bool()>& condition)
{
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!condition())
    {
        if (std::chrono::steady_clock::now() > end)
        {
            return false;
        }
        std::this_thread::sleep_for(kPause);
    }
    return true;
}

HWND FindSheet()
{
    HWND sheet = nullptr;
    EnumWindows(KeepSheet, reinterpret_cast<LPARAM>(&sheet));
    return sheet;
}

bool ShowPage(HWND sheet, int position)
{
    return SendMessageW(sheet, PSM_SETCURSEL, static_cast<WPARAM>(position), 0) != FALSE;
}

HWND PageControl(HWND sheet, int control)
{
    return GetDlgItem(reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0)), control);
}

bool Choose(HWND list, const std::wstring& text)
{
    const LRESULT index =
        SendMessageW(list, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text.c_str()));
    if (list == nullptr || IsWindowEnabled(list) == FALSE || index < 0)
    {
        return false;
    }
    SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
    // A list tells its page only of choices that come from the keyboard or the mouse.
    const auto notice = MAKEWPARAM(GetDlgCtrlID(list), CBN_SELCHANGE);
    SendMessageW(GetParent(list), WM_COMMAND, notice, reinterpret_cast<LPARAM>(list));
    return true;
}

bool Click(HWND button)
{
    return button != nullptr && IsWindowEnabled(button) != FALSE && PostMessageW(button, BM_CLICK, 0, 0) != FALSE;
}

bool CloseWith(HWND dialog, int button)
{
    return Click(GetDlgItem(dialog, button)) && WaitUntil([dialog] { return IsWindow(dialog) == FALSE; });
}

} // namespace tsypr::preferences_user
