// Does what a user would do in the property sheet that another program shows, step by step, for scripts/demo.sh:
// preferences_user STEP ...
//   page=N          the page with this position, from 1
//   picture=FILE    a bitmap file of the whole window
//   choose=ID:TEXT  the entry with this text in the page's list ID
//   click=ID        the page's button, choice or check box ID
//   press=ID        the sheet's button ID: 1 for OK, 2 for Cancel; waits until the sheet is gone
#include "tools/page_pictures/window_picture.h"

#include <windows.h>
#include <prsht.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <thread>

namespace
{

constexpr std::chrono::seconds kPatience{30};
constexpr std::chrono::milliseconds kPause{50};
// Until a window has drawn what has changed.
constexpr std::chrono::milliseconds kDrawing{300};

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

HWND FindSheet()
{
    HWND sheet = nullptr;
    EnumWindows(KeepSheet, reinterpret_cast<LPARAM>(&sheet));
    return sheet;
}

HWND ControlOf(HWND sheet, int control)
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

bool TakePicture(HWND sheet, const std::wstring& file)
{
    std::this_thread::sleep_for(kDrawing);
    return tsypr::pictures::SaveWindowPicture(sheet, file);
}

bool Do(HWND sheet, std::wstring_view verb, const std::wstring& object)
{
    const auto number = static_cast<int>(wcstol(object.c_str(), nullptr, 10));
    if (verb == L"page")
    {
        return SendMessageW(sheet, PSM_SETCURSEL, static_cast<WPARAM>(number - 1), 0) != FALSE;
    }
    if (verb == L"picture")
    {
        return TakePicture(sheet, object);
    }
    if (verb == L"choose")
    {
        const size_t colon = object.find(L':');
        return colon != std::wstring::npos && Choose(ControlOf(sheet, number), object.substr(colon + 1));
    }
    if (verb == L"click")
    {
        return Click(ControlOf(sheet, number));
    }
    return verb == L"press" && Click(GetDlgItem(sheet, number)) &&
           WaitUntil([sheet] { return IsWindow(sheet) == FALSE; });
}

} // namespace

int wmain(int count, wchar_t** arguments)
{
    HWND sheet = nullptr;
    if (!WaitUntil([&sheet] { return (sheet = FindSheet()) != nullptr; }))
    {
        std::fputs("preferences_user: no property sheet\n", stderr);
        return 2;
    }
    for (int i = 1; i < count; ++i)
    {
        const std::wstring step = arguments[i];
        const size_t equals = std::min(step.find(L'='), step.size());
        if (!Do(sheet, step.substr(0, equals), equals < step.size() ? step.substr(equals + 1) : L""))
        {
            std::fprintf(stderr, "preferences_user: cannot do %ls\n", arguments[i]);
            return 1;
        }
    }
    return 0;
}
