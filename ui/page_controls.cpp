#include "ui/page_controls.h"

#include <cwchar>
#include <iterator>

namespace tsypr
{
namespace
{

// Whether the window is a text; pictures are of the same class.
bool IsLabel(HWND window) noexcept
{
    wchar_t name[16] = {};
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    const auto kind = static_cast<DWORD>(GetWindowLongW(window, GWL_STYLE)) & SS_TYPEMASK;
    return _wcsicmp(name, L"Static") == 0 && kind <= SS_RIGHT;
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

} // namespace tsypr
