// The window of the input box, as the box's message loop sees it.
#ifndef TESSARY_WATERMARK_INPUT_BOX_WINDOW_H
#define TESSARY_WATERMARK_INPUT_BOX_WINDOW_H

#include "watermark/gdi_owners.h"
#include "watermark/input_box_layout.h"

#include <windows.h>

namespace tsypr::ZarnInputBox
{

inline constexpr wchar_t kWindowClass[] = L"ZarnInputBox";

// One box, from before its window is made until after it is gone.
struct OpenBox
{
    HMODULE resources = nullptr; // where the captions come from; may be null
    Scale scale;
    HWND owner = nullptr; // disabled while the box is up
    HWND box = nullptr;
    HWND edit = nullptr; // null when it could not be made; likewise below
    HWND okButton = nullptr;
    HWND cancelButton = nullptr;
    HWND prompt = nullptr;
    FontOwner font; // of the four controls
    bool isAccepted = false;
    bool closing = false;
};

// The box that is open, null if none; set by ShowBox.
OpenBox* CurrentBox() noexcept;

// Makes the four controls of the current box. False when one could not be made; those after it are then missing too.
bool CreateControls() noexcept;

// Makes the font of the current box's controls; without one they get the system's.
void CreateScaledFont() noexcept;

// Gives the owner the user back, destroys the window and ends the message loop. Harmless when repeated.
void CloseBox(OpenBox& box) noexcept;

LRESULT CALLBACK BoxProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

} // namespace tsypr::ZarnInputBox

#endif
