#include "watermark/input_box.h"
#include "tests/remote/log_capture.h"
#include "tests/watermark/input_box_driver.h"
#include "tests/watermark/watermark_fixture.h"

namespace tsypr::test
{
namespace
{

using namespace ZarnInputBox;

std::wstring TextOf(HWND window)
{
    wchar_t text[256] = {};
    SendMessageW(window, WM_GETTEXT, 256, reinterpret_cast<LPARAM>(text));
    return text;
}

// Left, top, width and height.
std::string PlaceOf(HWND window, HWND parent)
{
    RECT area = {};
    GetWindowRect(window, &area);
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&area), 2);
    return std::to_string(area.left) + " " + std::to_string(area.top) + " " + std::to_string(area.right - area.left) +
           " " + std::to_string(area.bottom - area.top) + ", ";
}

class InputBox : public testing::Test
{
protected:
    ~InputBox() override
    {
        DestroyWindow(sheet);
        g_dotsPerInch = 0;
        MSG message = {};
        EXPECT_FALSE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
        EXPECT_EQ(0U, LiveObjects());
    }

    const wchar_t* Show(HMODULE captions = nullptr)
    {
        const wchar_t* text = ShowBox(L"Title", L"Prompt", captions, page, answer);
        EXPECT_TRUE(IsWindowEnabled(sheet));
        EXPECT_EQ(nullptr, FindWindowW(L"ZarnInputBox", nullptr));
        return text;
    }
    const wchar_t* Show(std::function<void(const Box&)> steps, HMODULE captions = nullptr)
    {
        const BoxDriver driver(std::move(steps));
        return Show(captions);
    }

    LogCapture log;
    HWND sheet = CreateWindowExW(0, L"Static", L"", WS_POPUP, 40, 30, 900, 700, nullptr, nullptr, nullptr, nullptr);
    HWND page = CreateWindowExW(0, L"Static", L"", WS_CHILD, 0, 0, 9, 9, sheet, nullptr, nullptr, nullptr);
    Answer answer;
};

TEST_F(InputBox, TakesTheTextOnEnterAndOkOnly)
{
    const struct
    {
        std::wstring typed;
        HWND Box::*target; // of the message that ends the box
        UINT message;
        WPARAM key;
        bool accepted;
        std::wstring result;
    } cases[] = {{L"First", &Box::edit, WM_KEYDOWN, VK_RETURN, true, L"First"},
                 {L"Second", &Box::edit, WM_KEYDOWN, VK_ESCAPE, false, L"First"},
                 {L"Third", &Box::ok, BM_CLICK, 0, true, L"Third"},
                 {L"Fourth", &Box::cancel, BM_CLICK, 0, false, L"Third"},
                 {L"Fifth", &Box::window, WM_CLOSE, 0, false, L"Third"},
                 {std::wstring(200, L'x'), &Box::edit, WM_KEYDOWN, VK_RETURN, true, std::wstring(127, L'x')},
                 {L"", &Box::ok, BM_CLICK, 0, true, L""}};
    for (const auto& c : cases)
    {
        std::wstring before = L"?";
        const wchar_t* result = Show(
            [&c, &before](const Box& box)
            {
                before = TextOf(box.edit);
                box.Type(c.typed);
                PostMessageW(box.*c.target, c.message, c.key, 0);
            });
        EXPECT_EQ(L"", before);
        EXPECT_EQ(c.result, result);
        EXPECT_EQ(c.accepted, answer.isAccepted);
        EXPECT_EQ(c.accepted ? c.result : L"", answer.text.text) << "is the box's own";
    }
    // A key that follows the end counts no more. Both wait before the box takes the first.
    static std::vector<WPARAM> s_keys;
    s_keys.clear();
    const WNDPROC procedure = [](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT
    {
        s_keys.insert(s_keys.end(), message == WM_KEYDOWN ? 1 : 0, wParam);
        return message != WM_USER
                   ? DefWindowProcW(window, message, wParam, lParam)
                   : PostMessageW(window, WM_KEYDOWN, VK_ESCAPE, 0) && PostMessageW(window, WM_KEYDOWN, VK_RETURN, 0);
    };
    SetWindowLongPtrW(sheet, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(procedure));
    Show(
        [this](const Box& box)
        {
            box.Type(L"Late");
            SendMessageW(sheet, WM_USER, 0, 0);
        });
    EXPECT_EQ((std::vector<WPARAM>{VK_ESCAPE, VK_RETURN}), s_keys);
    EXPECT_FALSE(answer.isAccepted);
}

TEST_F(InputBox, MovesTheFocusInARing)
{
    Show(
        [](const Box& box)
        {
            EXPECT_TRUE(Eventually([&box] { return box.Focus() == box.edit; }));
            for (HWND next : {box.ok, box.cancel, box.edit, box.ok})
            {
                box.Press(VK_TAB);
                EXPECT_TRUE(Eventually([&box, next] { return box.Focus() == next; })) << TextOf(next);
            }
            box.Press(VK_ESCAPE);
        });
}

TEST_F(InputBox, IsScaledForTheScreenAndSpeaksTheUsersLanguage)
{
    constexpr char k96[] = "5 75 445 20, 350 10 100 25, 350 45 100 25, 5 10 330 25, ";
    constexpr char k120[] = "6 93 556 25, 437 12 125 31, 437 56 125 31, 6 12 412 31, ";
    constexpr char k144[] = "7 112 667 30, 525 15 150 37, 525 67 150 37, 7 15 495 37, ";
    HMODULE german = LoadLibraryW(L"tsyprUI_de_de_407.dll");
    const struct
    {
        int dotsPerInch;
        std::string scale, box, controls; // places; of edit, OK, Cancel, prompt
        int fontHeight;
        HMODULE captions;
        std::wstring ok, cancel;
    } cases[] = {
        {96, "1.000000", "210 280 480 140, ", k96, 20, german, L"OK", L"Abbrechen"},
        {120, "1.250000", "150 262 600 175, ", k120, 25, nullptr, L"Ok", L"Cancel"},
        {144, "1.500000", "90 245 720 210, ", k144, 30, GetModuleHandleW(nullptr), L"Ok", L"Cancel"}}; // has no texts
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.dotsPerInch);
        g_dotsPerInch = c.dotsPerInch;
        log.Take();
        const auto inspect = [&c, this](const Box& box)
        {
            EXPECT_FALSE(IsWindowEnabled(sheet));
            EXPECT_EQ(c.box, PlaceOf(box.window, sheet));
            std::string controls;
            for (HWND control : {box.edit, box.ok, box.cancel, box.prompt})
            {
                controls += PlaceOf(control, box.window);
                LOGFONTW font = {};
                GetObjectW(reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)), sizeof(font), &font);
                EXPECT_EQ(c.fontHeight, font.lfHeight);
            }
            EXPECT_EQ(c.controls, controls);
            EXPECT_EQ(ES_CENTER, GetWindowLongPtrW(box.edit, GWL_STYLE) & 3);
            EXPECT_EQ(SS_CENTER, GetWindowLongPtrW(box.prompt, GWL_STYLE) & 3);
            EXPECT_EQ(BS_DEFPUSHBUTTON, GetWindowLongPtrW(box.ok, GWL_STYLE) & BS_TYPEMASK);
            EXPECT_EQ(L"Title", TextOf(box.window));
            EXPECT_EQ(L"Prompt", TextOf(box.prompt));
            EXPECT_EQ(c.ok, TextOf(box.ok));
            EXPECT_EQ(c.cancel, TextOf(box.cancel));
            box.Press(VK_ESCAPE);
        };
        EXPECT_NE(nullptr, Show(inspect, c.captions));
        EXPECT_EQ("verbose ZarnInputBox::ShowBox, Window DPI, " + c.scale + ", " + c.scale + ".", log.Take().front());
    }
    FreeLibrary(german);
}

TEST_F(InputBox, SurvivesEachFailingCall)
{
    const std::tuple<const char*, int, bool, const char*> cases[] = {
        {"RegisterClassExW", 1, false, "ShowBox, failed to call RegisterClassEx, 8."},
        {"GetDC", 1, false, "ShowBox, failed to get DC, 8."},
        {"CreateWindowExW", 1, false, "ShowBox, failed to create inputbox Windows, 8."},
        {"CreateWindowExW", 2, true, "CreateControls, failed to create edit control, 8."},
        {"CreateWindowExW", 3, true, "CreateControls, failed to create ok button, 8."},
        {"CreateWindowExW", 4, true, "CreateControls, failed to create cancel button, 8."},
        {"CreateWindowExW", 5, true, "CreateControls, failed to create prompt control, 8."},
        {"CreateFontIndirectW", 1, true, "CreateScaledFont, Failed to create font object."},
    };
    UnregisterClassW(L"ZarnInputBox", GetModuleHandleW(nullptr));
    for (const auto& [function, call, shown, error] : cases)
    {
        FailCall(function, call);
        const wchar_t* text =
            shown ? Show([](const Box& box) { PostMessageW(box.window, WM_KEYDOWN, VK_RETURN, 0); }) : Show();
        FailCall(function, 0);
        EXPECT_EQ(shown, text != nullptr) << error;
        EXPECT_EQ(shown, answer.isAccepted);
        EXPECT_EQ(Messages{std::string("error ZarnInputBox::") + error}, log.TakeErrors());
    }
}

// A class that an earlier load of the module left at another address; a second box; the end of the whole thread.
TEST_F(InputBox, CopesWithWhatOthersDo)
{
    UnregisterClassW(L"ZarnInputBox", GetModuleHandleW(nullptr));
    WNDCLASSW stale = {};
    stale.lpfnWndProc = [](HWND, UINT, WPARAM, LPARAM) -> LRESULT { return 0; };
    stale.hInstance = GetModuleHandleW(nullptr);
    stale.lpszClassName = L"ZarnInputBox";
    ASSERT_NE(0, RegisterClassW(&stale));
    const DWORD thread = GetCurrentThreadId();
    EXPECT_NE(nullptr,
              Show(
                  [thread, this](const Box& box)
                  {
                      Answer second = {true, {L"?"}};
                      EXPECT_EQ(nullptr, ShowBox(L"", L"", nullptr, page, second));
                      EXPECT_FALSE(second.isAccepted);
                      EXPECT_TRUE(IsWindow(box.window));
                      PostThreadMessageW(thread, WM_QUIT, 7, 0);
                  }));
    EXPECT_FALSE(answer.isAccepted);
    MSG message = {};
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(7U, message.wParam);
    // The owner goes while the box is up.
    const BoxDriver driver([this](const Box&) { SendMessageW(sheet, WM_CLOSE, 0, 0); });
    EXPECT_NE(nullptr, ShowBox(L"", L"", nullptr, page));
    EXPECT_FALSE(IsWindow(sheet));
}

} // namespace
} // namespace tsypr::test
