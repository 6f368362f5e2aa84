// What a user does in the property sheet that another program shows. Nothing is told of windows that vanish meanwhile:
// a step that cannot be done is false.
#ifndef TESSARY_TOOLS_PREFERENCES_USER_SHEET_USER_H
#define TESSARY_TOOLS_PREFERENCES_USER_SHEET_USER_H

#include <windows.h>

#include <functional>
#include <string>

namespace tsypr::preferences_user
{

// Asks again and again for as long as a user would wait; false if the condition never held.
bool WaitUntil(const std::function<bool()>& condition);

// The property sheet on the screen, or null.
HWND FindSheet();

// Brings the page with this position, from 0, to the top.
bool ShowPage(HWND sheet, int position);

// A control of the page on top, or null.
HWND PageControl(HWND sheet, int control);

// Chooses the entry with this text in a list.
bool Choose(HWND list, const std::wstring& text);

// Presses a button, choice or check box; returns before the press has an effect.
bool Click(HWND button);

// Presses a button that closes the sheet, or another dialog, and waits until that is gone.
bool CloseWith(HWND dialog, int button);

} // namespace tsypr::preferences_user

#endif
