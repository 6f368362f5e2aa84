// The controls of a page, as its code uses them. A control that the template lacks takes every call and does nothing.
#ifndef TESSARY_UI_PAGE_CONTROLS_H
#define TESSARY_UI_PAGE_CONTROLS_H

#include <windows.h>

#include <cstddef>
#include <optional>

namespace tsypr
{

// A drop-down list, unsorted: positions are those of the printer's own list.
class DropDownList
{
public:
    DropDownList(HWND dialog, int id) noexcept : m_window(GetDlgItem(dialog, id)) {}

    void Clear() const noexcept
    {
        SendMessageW(m_window, CB_RESETCONTENT, 0, 0);
    }
    void Add(const wchar_t* text) const noexcept
    {
        SendMessageW(m_window, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
    }
    // A position beyond the end leaves nothing selected.
    void Select(size_t position) const noexcept
    {
        SendMessageW(m_window, CB_SETCURSEL, position, 0);
    }
    // Empty when nothing is selected.
    std::optional<size_t> Selected() const noexcept
    {
        const LRESULT position = m_window != nullptr ? SendMessageW(m_window, CB_GETCURSEL, 0, 0) : CB_ERR;
        return position >= 0 ? std::optional(static_cast<size_t>(position)) : std::nullopt;
    }
    // With the label before it.
    void Enable(bool enabled = true) const noexcept;
    void Disable() const noexcept
    {
        Enable(false);
    }

private:
    HWND m_window;
};

// Enables or disables a button.
void EnableControl(HWND dialog, int id, bool enabled) noexcept;

bool IsChecked(HWND dialog, int id) noexcept;
void SetChecked(HWND dialog, int id, bool checked) noexcept;

// Shows a bitmap that stays its owner's; null shows nothing.
void ShowPicture(HWND dialog, int id, HBITMAP bitmap) noexcept;

} // namespace tsypr

#endif
