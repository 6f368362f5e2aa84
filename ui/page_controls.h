// The controls of a page, as its code uses them. A control that the template lacks takes every call and does nothing.
#ifndef TESSARY_UI_PAGE_CONTROLS_H
#define TESSARY_UI_PAGE_CONTROLS_H

#include <windows.h>

#include <cstddef>
#include <cstdint>

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
    // CB_ERR, which is -1, when nothing is selected.
    int32_t Position() const noexcept
    {
        return m_window != nullptr ? static_cast<int32_t>(SendMessageW(m_window, CB_GETCURSEL, 0, 0)) : CB_ERR;
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

// Disables every control of the dialog but pictures.
void DisableControls(HWND dialog) noexcept;

// Checks the radio button of the choice, 0 for `first`, and no other up to `last`. A choice that has no button checks
// none: false, with the last error set to ERROR_INVALID_PARAMETER.
bool CheckChoice(HWND dialog, int first, int last, uint32_t choice) noexcept;

bool IsChecked(HWND dialog, int id) noexcept;
void SetChecked(HWND dialog, int id, bool checked) noexcept;

// Shows a bitmap that stays its owner's; null shows nothing.
void ShowPicture(HWND dialog, int id, HBITMAP bitmap) noexcept;

// Gives a control that shows no text of its own a name, which screen readers read out.
void NameControl(HWND dialog, int id, const wchar_t* name) noexcept;

// The same by the label before it.
void NameByLabel(HWND dialog, int id) noexcept;

} // namespace tsypr

#endif
