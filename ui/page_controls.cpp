#include "ui/page_controls.h"

#include <algorithm>
#include <cwchar>
#include <iterator>

namespace tsypr
{
namespace
{

// Whether the window is a text or a picture.
bool IsStatic(HWND window) noexcept
{
    wchar_t name[16] = {};
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    return _wcsicmp(name, L"Static") == 0;
}

bool IsLabel(HWND window) noexcept
{
    const auto kind = static_cast<DWORD>(GetWindowLongW(window, GWL_STYLE)) & SS_TYPEMASK;
    return IsStatic(window) && kind <= SS_RIGHT;
}

} // namespace

void DropDownList::Enable(bool enabled) const noexcept
{
    const BOOL enable = enabled ? TRUE : FALSE;
    EnableWindow(m_window, enable);
    const HWND label = m_window != nullptr ? GetWindow(m_window, GW_HWNDPREV) : nullptr;
    if (label != nullptr && IsLabel(label))
    {
        EnableWindow(label, enable);
    }
}

void EnableControl(HWND dialog, int id, bool enabled) noexcept
{
    EnableWindow(GetDlgItem(dialog, id), enabled ? TRUE : FALSE);
}

void DisableControls(HWND dialog) noexcept
{
    for (HWND control = GetWindow(dialog, GW_CHILD); control != nullptr; control = GetWindow(control, GW_HWNDNEXT))
    {
        if (!IsStatic(control) || IsLabel(control))
        {
            EnableWindow(control, FALSE);
        }
    }
}

bool CheckChoice(HWND dialog, int first, int last, uint32_t choice) noexcept
{
    if (choice > static_cast<uint32_t>(last - first))
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    return CheckRadioButton(dialog, first, last, first + static_cast<int>(choice)) != FALSE;
}

bool IsChecked(HWND dialog, int id) noexcept
{
    return IsDlgButtonChecked(dialog, id) == BST_CHECKED;
}

void SetChecked(HWND dialog, int id, bool checked) noexcept
{
    CheckDlgButton(dialog, id, checked ? BST_CHECKED : BST_UNCHECKED);
}

void ShowPicture(HWND dialog, int id, HBITMAP bitmap) noexcept
{
    SendDlgItemMessageW(dialog, id, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(bitmap));
}

void NameControl(HWND dialog, int id, const wchar_t* name) noexcept
{
    // Controls for pictures take no text for themselves; the window has one all the same, and does not show it.
    DefWindowProcW(GetDlgItem(dialog, id), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name));
}

void NameByLabel(HWND dialog, int id) noexcept
{
    HWND label = GetDlgItem(dialog, id);
    while (label != nullptr && !IsLabel(label))
    {
        label = GetWindow(label, GW_HWNDPREV);
    }
    wchar_t name[128] = {};
    GetWindowTextW(label, name, static_cast<int>(std::size(name)));
    *std::remove(std::begin(name), std::begin(name) + std::wcslen(name), L'&') = L'\0';
    NameControl(dialog, id, name);
}

} // namespace tsypr
