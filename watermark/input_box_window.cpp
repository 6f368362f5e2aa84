#include "watermark/input_box_window.h"

#include "language/resource_ids.h"
#include "module/log.h"
#include "watermark/resource_text.h"

#include <utility>

namespace tsypr::ZarnInputBox
{
namespace
{

constexpr size_t kCaptionChars = 16;

// The control has no identifier: the box knows it by its handle. Null on failure.
HWND CreateControl(const wchar_t* className, const wchar_t* caption, DWORD style, const Place& at96) noexcept
{
    const OpenBox& box = *CurrentBox();
    const Place place = Scaled(at96, box.scale);
    HWND control = CreateWindowExW(WS_EX_STATICEDGE,
                                   className,
                                   caption,
                                   WS_CHILD | WS_VISIBLE | style,
                                   place.x,
                                   place.y,
                                   place.width,
                                   place.height,
                                   box.box,
                                   nullptr,
                                   GetModuleHandleW(nullptr),
                                   nullptr);
    if (control != nullptr)
    {
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(box.font.get()), FALSE);
    }
    return control;
}

bool Created(HWND control, const char* failureMessage) noexcept
{
    if (control == nullptr)
    {
        LogError(failureMessage, "ZarnInputBox::CreateControls", static_cast<int>(GetLastError()));
    }
    return control != nullptr;
}

void OnCreate(HWND window) noexcept
{
    OpenBox& box = *CurrentBox();
    box.box = window;
    CreateScaledFont();
    if (CreateControls())
    {
        SetFocus(box.edit);
    }
}

// The message loop takes the clicks for the keys that they stand for.
void OnClicked(const OpenBox& box, HWND control) noexcept
{
    if (control != nullptr && control == box.okButton)
    {
        PostMessageW(box.box, WM_KEYDOWN, VK_RETURN, 0);
    }
    else if (control != nullptr && control == box.cancelButton)
    {
        PostMessageW(box.box, WM_KEYDOWN, VK_ESCAPE, 0);
    }
}

} // namespace

bool CreateControls() noexcept
{
    OpenBox& box = *CurrentBox();
    box.edit = CreateControl(L"edit", L"", WS_TABSTOP | ES_AUTOHSCROLL, kEditPlace);
    if (!Created(box.edit, "%s, failed to create edit control, %d.\n"))
    {
        return false;
    }
    const auto ok = ResourceText<kCaptionChars>(box.resources, IDS_OK, L"Ok");
    box.okButton = CreateControl(L"Button", ok.text, WS_TABSTOP, kOkPlace);
    if (!Created(box.okButton, "%s, failed to create ok button, %d.\n"))
    {
        return false;
    }
    const auto cancel = ResourceText<kCaptionChars>(box.resources, IDS_CANCEL, L"Cancel");
    box.cancelButton = CreateControl(L"Button", cancel.text, WS_TABSTOP, kCancelPlace);
    if (!Created(box.cancelButton, "%s, failed to create cancel button, %d.\n"))
    {
        return false;
    }
    box.prompt = CreateControl(L"static", L"", 0, kPromptPlace);
    return Created(box.prompt, "%s, failed to create prompt control, %d.\n");
}

void CreateScaledFont() noexcept
{
    OpenBox& box = *CurrentBox();
    LOGFONTW font = {};
    font.lfHeight = Scaled(kFontHeight, box.scale.y);
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = DEFAULT_CHARSET;
    std::wcscpy(font.lfFaceName, L"Times");
    box.font.reset(CreateFontIndirectW(&font));
    if (box.font == nullptr)
    {
        LogError("%s, Failed to create font object.\n", "ZarnInputBox::CreateScaledFont");
    }
}

void CloseBox(OpenBox& box) noexcept
{
    // Destroying the window brings the message that leads here once more.
    if (std::exchange(box.closing, true))
    {
        return;
    }
    box.font.reset();
    EnableWindow(box.owner, TRUE);
    SetForegroundWindow(box.owner);
    DestroyWindow(box.box);
    PostQuitMessage(0);
}

LRESULT CALLBACK BoxProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    OpenBox* box = CurrentBox();
    if (box == nullptr)
    {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    switch (message)
    {
    case WM_CREATE:
        OnCreate(window);
        return 0;
    case WM_DESTROY:
        CloseBox(*box);
        return 0;
    case WM_COMMAND:
        if (HIWORD(wParam) == BN_CLICKED)
        {
            OnClicked(*box, reinterpret_cast<HWND>(lParam));
            return 0;
        }
        break;
    default:
        break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

} // namespace tsypr::ZarnInputBox
