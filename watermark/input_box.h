// A small modal window that asks for one line of text.
#ifndef TESSARY_WATERMARK_INPUT_BOX_H
#define TESSARY_WATERMARK_INPUT_BOX_H

#include "watermark/watermark_block.h"

#include <windows.h>

namespace tsypr::ZarnInputBox
{

// Shows the box over the parent of `caller`, which is disabled meanwhile, and returns when the box is closed.
// `resources` holds the captions of the buttons and may be null. Returns the text of the last box that was accepted, at
// most 127 characters, empty if there was none; it stays valid until the next box is accepted. Null when the box could
// not be shown or one is open already.
const wchar_t* ShowBox(const wchar_t* title, const wchar_t* prompt, HMODULE resources, HWND caller) noexcept;

// What one box brought. After a cancelled one the text above is that of an earlier box; here it is empty.
struct Answer
{
    bool isAccepted = false;
    FixedText<kWatermarkTextChars> text = {};
};

// The same, with an answer that no other box changes.
const wchar_t* ShowBox(
    const wchar_t* title, const wchar_t* prompt, HMODULE resources, HWND caller, Answer& answer) noexcept;

} // namespace tsypr::ZarnInputBox

#endif
