#include "watermark/input_box.h"

#include "module/log.h"
#include "watermark/input_box_window.h"

#include <atomic>

namespace tsypr::ZarnInputBox
{
namespace
{

constexpr char kFunction[] = "ZarnInputBox::ShowBox";
constexpr LONG_PTR kAlignmentBits = 3;
static_assert(SS_CENTER == 1 && ES_CENTER == 1);

constinit std::atomic<OpenBox*> g_current{nullptr};
FixedText<kWatermarkTextChars> g_result = {}; // changed by the current box only

int LastError() noexcept
{
    return static_cast<int>(GetLastError());
}

// Makes a box the current one for as long as it lives, unless another one is.
class CurrentBoxScope
{
public:
    explicit CurrentBoxScope(OpenBox& box) noexcept
    {
        OpenBox* none = nullptr;
        m_entered = g_current.compare_exchange_strong(none, &box);
    }
    CurrentBoxScope(const CurrentBoxScope&) = delete;
    CurrentBoxScope& operator=(const CurrentBoxScope&) = delete;
    ~CurrentBoxScope()
    {
        if (m_entered)
        {
            g_current = nullptr;
        }
    }

    bool Entered() const noexcept
    {
        return m_entered;
    }

private:
    bool m_entered;
};

// The class belongs to the process's main module, on purpose, and stays for the life of the process. When this module
// was unloaded since and came back at another address, the class that it left calls code that is gone: it is replaced.
bool RegisterBoxClass() noexcept
{
    HINSTANCE instance = GetModuleHandleW(nullptr);
    WNDCLASSEXW boxClass = {};
    boxClass.cbSize = sizeof(boxClass);
    if (GetClassInfoExW(instance, kWindowClass, &boxClass) != FALSE)
    {
        if (boxClass.lpfnWndProc == BoxProc)
        {
            return true;
        }
        UnregisterClassW(kWindowClass, instance);
    }
    boxClass = {};
    boxClass.cbSize = sizeof(boxClass);
    boxClass.style = CS_NOCLOSE | CS_HREDRAW | CS_VREDRAW;
    boxClass.lpfnWndProc = BoxProc;
    boxClass.hInstance = instance;
    boxClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    boxClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_MENU + 1);
    boxClass.lpszClassName = kWindowClass;
    if (RegisterClassExW(&boxClass) == 0)
    {
        LogError("%s, failed to call RegisterClassEx, %d.\n", kFunction, LastError());
        return false;
    }
    return true;
}

bool MeasureScale(HWND caller, Scale& scale) noexcept
{
    HDC dc = GetDC(caller);
    if (dc == nullptr)
    {
        LogError("%s, failed to get DC, %d.\n", kFunction, LastError());
        return false;
    }
    scale.x = static_cast<float>(GetDeviceCaps(dc, LOGPIXELSX) / 96.0);
    scale.y = static_cast<float>(GetDeviceCaps(dc, LOGPIXELSY) / 96.0);
    ReleaseDC(nullptr, dc);
    LogVerbose("%s, Window DPI, %f, %f.\n", kFunction, static_cast<double>(scale.x), static_cast<double>(scale.y));
    return true;
}

bool CreateBoxWindow(const OpenBox& box, const wchar_t* title) noexcept
{
    const Place place = Scaled(kBoxPlace, box.scale);
    HWND window = CreateWindowExW(WS_EX_DLGMODALFRAME,
                                  kWindowClass,
                                  title,
                                  WS_POPUP | WS_CAPTION | WS_SYSMENU,
                                  CW_USEDEFAULT,
                                  CW_USEDEFAULT,
                                  place.width,
                                  place.height,
                                  box.owner,
                                  nullptr,
                                  GetModuleHandleW(nullptr),
                                  nullptr);
    if (window == nullptr)
    {
        LogError("%s, failed to create inputbox Windows, %d.\n", kFunction, LastError());
        return false;
    }
    return true;
}

void CentreOverOwner(const OpenBox& box) noexcept
{
    RECT area = {};
    RECT window = {};
    GetClientRect(box.owner, &area);
    GetWindowRect(box.box, &window);
    POINT corner = {((area.right - area.left) - (window.right - window.left)) / 2,
                    ((area.bottom - area.top) - (window.bottom - window.top)) / 2};
    if ((GetWindowLongPtrW(box.box, GWL_STYLE) & WS_CHILD) == 0)
    {
        MapWindowPoints(box.owner, GetDesktopWindow(), &corner, 1);
    }
    SetWindowPos(box.box, nullptr, corner.x, corner.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
}

void CentreText(HWND control) noexcept
{
    const LONG_PTR style = GetWindowLongPtrW(control, GWL_STYLE);
    if (control == nullptr || (style & kAlignmentBits) == SS_CENTER)
    {
        return;
    }
    SetWindowLongPtrW(control, GWL_STYLE, (style & ~kAlignmentBits) | SS_CENTER);
    constexpr UINT kStyleOnly =
        SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED | SWP_NOCOPYBITS;
    SetWindowPos(control, nullptr, 0, 0, 0, 0, kStyleOnly);
}

void BringUp(const OpenBox& box) noexcept
{
    SetForegroundWindow(box.box);
    SendMessageW(box.okButton, BM_SETSTYLE, BS_DEFPUSHBUTTON, TRUE);
    SendMessageW(box.cancelButton, BM_SETSTYLE, BS_PUSHBUTTON, TRUE);
    SendMessageW(box.edit, EM_SETSEL, 0, -1);
    SendMessageW(box.edit, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L""));
    SendMessageW(box.edit, EM_SETSEL, 0, -1);
    // Where the edit could not be made, the box takes the keys, so that Escape closes it.
    SetFocus(box.edit != nullptr ? box.edit : box.box);
    EnableWindow(box.owner, FALSE);
    ShowWindow(box.box, SW_SHOW);
    UpdateWindow(box.box);
}

void MoveFocus(const OpenBox& box) noexcept
{
    HWND focus = GetFocus();
    if (focus == nullptr)
    {
        return;
    }
    if (focus == box.edit)
    {
        SetFocus(box.okButton);
    }
    else if (focus == box.okButton)
    {
        SetFocus(box.cancelButton);
    }
    else if (focus == box.cancelButton)
    {
        SetFocus(box.edit);
    }
}

void TakeText(OpenBox& box) noexcept
{
    g_result = {};
    GetWindowTextW(box.edit, g_result.text, kWatermarkTextChars);
    box.isAccepted = true;
}

void OnKey(OpenBox& box, WPARAM key) noexcept
{
    switch (key)
    {
    case VK_ESCAPE:
        SendMessageW(box.box, WM_DESTROY, 0, 0);
        break;
    case VK_RETURN:
        TakeText(box);
        SendMessageW(box.box, WM_DESTROY, 0, 0);
        break;
    case VK_TAB:
        MoveFocus(box);
        break;
    default:
        break;
    }
}

void RunMessageLoop(OpenBox& box) noexcept
{
    MSG message = {};
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
    {
        // Keys that were typed ahead of the end no longer count.
        if (message.message == WM_KEYDOWN && !box.closing)
        {
            OnKey(box, message.wParam);
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    if (!box.closing)
    {
        // Somebody else ends the thread: the box goes, and the thread's own loop is to see it too.
        CloseBox(box);
        PostQuitMessage(static_cast<int>(message.wParam));
    }
}

} // namespace

OpenBox* CurrentBox() noexcept
{
    return g_current;
}

const wchar_t* ShowBox(const wchar_t* title, const wchar_t* prompt, HMODULE resources, HWND caller) noexcept
{
    Answer answer;
    return ShowBox(title, prompt, resources, caller, answer);
}

const wchar_t* ShowBox(
    const wchar_t* title, const wchar_t* prompt, HMODULE resources, HWND caller, Answer& answer) noexcept
{
    answer = {};
    OpenBox box;
    const CurrentBoxScope scope(box);
    if (!scope.Entered())
    {
        LogVerbose("%s, another input box is open.\n", kFunction);
        return nullptr;
    }
    box.resources = resources;
    if (!RegisterBoxClass() || !MeasureScale(caller, box.scale))
    {
        return nullptr;
    }
    box.owner = GetParent(caller);
    if (!CreateBoxWindow(box, title))
    {
        return nullptr;
    }
    CentreOverOwner(box);
    CentreText(box.prompt);
    CentreText(box.edit);
    SetWindowTextW(box.prompt, prompt);
    BringUp(box);
    RunMessageLoop(box);
    if (box.isAccepted)
    {
        answer = {true, g_result};
    }
    return g_result.text;
}

} // namespace tsypr::ZarnInputBox
