#include "watermark/input_box.h"
#include "tests/watermark/input_box_driver.h"
#include "tests/watermark/watermark_fixture.h"
#include "watermark/input_box_layout.h"

namespace tsypr::test
{
namespace
{

using namespace ZarnInputBox;

struct WindowDeleter
{
    void operator()(HWND window) const
    {
        DestroyWindow(window);
    }
};
using WindowOwner = std::unique_ptr<std::remove_pointer_t<HWND>, WindowDeleter>;

std::wstring TextOf(HWND window)
{
    wchar_t text[256] = {};
    SendMessageW(window, WM_GETTEXT, 256, reinterpret_cast<LPARAM>(text));
    return text;
}

RECT AreaIn(HWND parent, HWND window)
{
    RECT area = {};
    GetWindowRect(window, &area);
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&area), 2);
    return area;
}

class InputBox : public WatermarkTest
{
protected:
    InputBox()
        : sheet(CreateWindowExW(0, L"Static", L"", WS_POPUP, 40, 30, 900, 700, nullptr, nullptr, nullptr, nullptr)),
          page(CreateWindowExW(0, L"Static", L"", WS_CHILD, 0, 0, 9, 9, sheet.get(), nullptr, nullptr, nullptr))
    {
    }
    ~InputBox() override
    {
        MSG message = {};
        EXPECT_FALSE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
        EXPECT_EQ(0U, LiveObjects());
    }

    const wchar_t* Show()
    {
        const wchar_t* text = ShowBox(L"Title", L"Prompt", ResourceModule, page);
        EXPECT_TRUE(IsWindowEnabled(sheet.get()));
        EXPECT_EQ(nullptr, FindWindowW(L"ZarnInputBox", nullptr));
        return text;
    }
    const wchar_t* Show(std::function<void(const Box&)> steps)
    {
        const BoxDriver driver(std::move(steps));
        return Show();
    }

    WindowOwner sheet;
    HWND page; // goes with the sheet
};

TEST_F(InputBox, TakesTheTextOnEnterAndOkOnly)
{
    const std::function<void(const Box&)> enter = [](const Box& box) { box.Press(VK_RETURN); };
    const std::function<void(const Box&)> clickOk = [](const Box& box) { PostMessageW(box.ok, BM_CLICK, 0, 0); };
    const std::function<void(const Box&)> escape = [](const Box& box) { box.Press(VK_ESCAPE); };
    const std::function<void(const Box&)> clickCancel = [](const Box& box)
    { PostMessageW(box.cancel, BM_CLICK, 0, 0); };
    const std::function<void(const Box&)> close = [](const Box& box) { PostMessageW(box.window, WM_CLOSE, 0, 0); };
    const struct
    {
        std::wstring typed;
        std::function<void(const Box&)> end;
        bool accepted;
        std::wstring result;
    } cases[] = {{L"First", enter, true, L"First"},
                 {L"Second", escape, false, L"First"},
                 {L"Third", clickOk, true, L"Third"},
                 {L"Fourth", clickCancel, false, L"Third"},
                 {L"Fifth", close, false, L"Third"},
                 {std::wstring(200, L'x'), enter, true, std::wstring(127, L'x')},
                 {L"", clickOk, true, L""}};
    for (const auto& c : cases)
    {
        std::wstring before = L"?";
        const wchar_t* result = Show(
            [&c, &before](const Box& box)
            {
                before = TextOf(box.edit);
                box.Type(c.typed);
                c.end(box);
            });
        EXPECT_EQ(L"", before);
        EXPECT_EQ(c.result, result);
        EXPECT_EQ(c.accepted, WasAccepted());
    }
    // Keys that follow the end count no more.
    Show(
        [](const Box& box)
        {
            box.Type(L"Late");
            SendMessageW(box.window, WM_NULL, 0, 0);
            PostMessageW(GetWindow(box.window, GW_OWNER), WM_KEYDOWN, VK_ESCAPE, 0);
            PostMessageW(GetWindow(box.window, GW_OWNER), WM_KEYDOWN, VK_RETURN, 0);
        });
    EXPECT_FALSE(WasAccepted());
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

TEST_F(InputBox, IsScaledForTheScreen)
{
    const struct
    {
        int dotsPerInch;
        const char* scales;
        SIZE box;
        RECT edit, ok, cancel, prompt; // left, top, width, height
        int fontHeight;
    } cases[] = {
        {96, "1.000000", {480, 140}, {5, 75, 445, 20}, {350, 10, 100, 25}, {350, 45, 100, 25}, {5, 10, 330, 25}, 20},
        {120, "1.250000", {600, 175}, {6, 93, 556, 25}, {437, 12, 125, 31}, {437, 56, 125, 31}, {6, 12, 412, 31}, 25},
        {144, "1.500000", {720, 210}, {7, 112, 667, 30}, {525, 15, 150, 37}, {525, 67, 150, 37}, {7, 15, 495, 37}, 30}};
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.dotsPerInch);
        g_dotsPerInch = c.dotsPerInch;
        log.Take();
        Show(
            [&c, this](const Box& box)
            {
                EXPECT_FALSE(IsWindowEnabled(sheet.get()));
                EXPECT_EQ(sheet.get(), GetWindow(box.window, GW_OWNER));
                const RECT area = AreaIn(sheet.get(), box.window);
                EXPECT_EQ(c.box.cx, area.right - area.left);
                EXPECT_EQ(c.box.cy, area.bottom - area.top);
                EXPECT_EQ((900 - c.box.cx) / 2, area.left);
                EXPECT_EQ((700 - c.box.cy) / 2, area.top);
                const std::pair<HWND, RECT> controls[] = {
                    {box.edit, c.edit}, {box.ok, c.ok}, {box.cancel, c.cancel}, {box.prompt, c.prompt}};
                for (const auto& [control, expected] : controls)
                {
                    const RECT place = AreaIn(box.window, control);
                    const RECT sized = {place.left, place.top, place.right - place.left, place.bottom - place.top};
                    EXPECT_TRUE(EqualRect(&expected, &sized)) << sized.left << " " << sized.top << " " << sized.right;
                    LOGFONTW font = {};
                    GetObjectW(reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)), sizeof(font), &font);
                    EXPECT_EQ(c.fontHeight, font.lfHeight);
                    EXPECT_STREQ(L"Times", font.lfFaceName);
                }
                EXPECT_EQ(ES_CENTER, GetWindowLongPtrW(box.edit, GWL_STYLE) & 3);
                EXPECT_EQ(SS_CENTER, GetWindowLongPtrW(box.prompt, GWL_STYLE) & 3);
                EXPECT_EQ(BS_DEFPUSHBUTTON, GetWindowLongPtrW(box.ok, GWL_STYLE) & BS_TYPEMASK);
                EXPECT_EQ(BS_PUSHBUTTON, GetWindowLongPtrW(box.cancel, GWL_STYLE) & BS_TYPEMASK);
                EXPECT_EQ(L"Title", TextOf(box.window));
                EXPECT_EQ(L"Prompt", TextOf(box.prompt));
                box.Press(VK_ESCAPE);
            });
        EXPECT_EQ(
            Messages{std::string("verbose ZarnInputBox::ShowBox, Window DPI, ") + c.scales + ", " + c.scales + "."},
            log.Take());
    }
}

TEST_F(InputBox, TakesItsCaptionsFromTheLanguageLibrary)
{
    HMODULE german = LoadLibraryW(L"tsyprUI_de_de_407.dll");
    const struct
    {
        HMODULE resources;
        std::wstring ok, cancel;
    } cases[] = {{german, L"OK", L"Abbrechen"},
                 {nullptr, L"Ok", L"Cancel"},
                 {GetModuleHandleW(nullptr), L"Ok", L"Cancel"}}; // has no texts
    for (const auto& c : cases)
    {
        const BoxDriver driver(
            [&c](const Box& box)
            {
                EXPECT_EQ(c.ok, TextOf(box.ok));
                EXPECT_EQ(c.cancel, TextOf(box.cancel));
                box.Press(VK_ESCAPE);
            });
        EXPECT_NE(nullptr, ShowBox(L"", L"", c.resources, page));
    }
    FreeLibrary(german);
}

TEST_F(InputBox, SurvivesEachFailingCall)
{
    const struct
    {
        const char* function;
        int call;
        bool shown;
        const char* error;
    } cases[] = {
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
    for (const auto& c : cases)
    {
        FailCall(c.function, c.call);
        const wchar_t* text =
            c.shown ? Show([](const Box& box) { PostMessageW(box.window, WM_KEYDOWN, VK_RETURN, 0); }) : Show();
        FailCall(c.function, 0);
        EXPECT_EQ(c.shown, text != nullptr) << c.error;
        EXPECT_EQ(c.shown, WasAccepted());
        EXPECT_EQ(Messages{std::string("error ZarnInputBox::") + c.error}, log.TakeErrors());
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
                      EXPECT_EQ(nullptr, ShowBox(L"", L"", nullptr, page));
                      EXPECT_TRUE(IsWindow(box.window));
                      PostThreadMessageW(thread, WM_QUIT, 7, 0);
                  }));
    EXPECT_FALSE(WasAccepted());
    MSG message = {};
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(7U, message.wParam);
    // The owner goes while the box is up.
    const BoxDriver driver([this](const Box&) { SendMessageW(sheet.get(), WM_CLOSE, 0, 0); });
    EXPECT_NE(nullptr, ShowBox(L"", L"", nullptr, page));
    EXPECT_FALSE(IsWindow(sheet.release()));
}

} // namespace
} // namespace tsypr::test
