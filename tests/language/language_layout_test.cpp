// The pages of the built language libraries as real dialogs, at the font sizes of four screen resolutions: nothing that
// a user reads is cut. What a template alone shows is checked by language/check_templates.py.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <vector>

#include "language/resource_ids.h"
#include "tests/language/built_library.h"
#include "tools/page_pictures/samples.h"

namespace
{

using namespace tsypr::language_tests;

using Window = Owner<HWND, decltype([](HWND window) { DestroyWindow(window); })>;

constexpr int kPages[] = {IDD_LAYOUT, IDD_PAPER, IDD_ADVANCED, IDD_FINISHING, IDD_WATERMARK};
// Screens of 96, 120, 144 and 192 pixels in an inch.
constexpr int kScales[] = {100, 125, 150, 200};
// What stands beside the text, in dialog units: the mark of a check box, the arrow and edges of a list, the edges of a
// button on both sides, the ends of a frame's line.
constexpr int kMark = 12;
constexpr int kListEdges = 16;
constexpr int kButtonEdges = 6;
constexpr int kFrameEnds = 12;

// Where the text ends that begins at the position, in bytes.
size_t AfterText(const std::vector<std::byte>& bytes, size_t position)
{
    wchar_t unit = 0;
    do
    {
        std::memcpy(&unit, &bytes.at(position), sizeof(unit));
        position += sizeof(unit);
    } while (unit != L'\0');
    return position;
}

// The template with a font larger by so many per cent, which every measure of the dialog follows.
std::vector<std::byte> ScaledTemplate(HMODULE library, int id, int scale)
{
    HRSRC resource = FindResourceW(library, MAKEINTRESOURCEW(id), MAKEINTRESOURCEW(5)); // RT_DIALOG
    if (resource == nullptr)
    {
        return {};
    }
    const auto* first = static_cast<const std::byte*>(LockResource(LoadResource(library, resource)));
    std::vector<std::byte> bytes(first, first + SizeofResource(library, resource));
    // An extended template has 26 bytes of numbers, then no menu, no class and the title.
    const size_t fontSize = AfterText(bytes, 26 + 2 * sizeof(wchar_t));
    WORD points = 0;
    std::memcpy(&points, &bytes.at(fontSize), sizeof(points));
    points = static_cast<WORD>(MulDiv(points, scale, 100));
    std::memcpy(&bytes.at(fontSize), &points, sizeof(points));
    return bytes;
}

std::wstring TextOf(HWND window)
{
    wchar_t text[512];
    return {text, static_cast<size_t>(GetWindowTextW(window, text, 512))};
}

class Ruler
{
public:
    explicit Ruler(HWND window)
        : m_window(window), m_dc(GetDC(window)),
          m_previous(SelectObject(m_dc, reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0))))
    {
    }
    ~Ruler()
    {
        SelectObject(m_dc, m_previous);
        ReleaseDC(m_window, m_dc);
    }
    Ruler(const Ruler&) = delete;
    Ruler& operator=(const Ruler&) = delete;

    SIZE Measure(const std::wstring& text, UINT format, int width = 0) const
    {
        RECT area{0, 0, width, 0};
        DrawTextW(m_dc, text.c_str(), -1, &area, DT_CALCRECT | format);
        return {area.right, area.bottom};
    }

private:
    HWND m_window;
    HDC m_dc;
    HGDIOBJ m_previous;
};

class PageLayout : public testing::TestWithParam<const char*>
{
protected:
    void SetUp() override
    {
        const INITCOMMONCONTROLSEX controls{sizeof(controls),
                                            ICC_STANDARD_CLASSES | ICC_UPDOWN_CLASS | ICC_TAB_CLASSES};
        InitCommonControlsEx(&controls);
        ASSERT_NE(m_library, nullptr);
    }

    Window CreatePage(int id, int scale) const
    {
        const auto templateBytes = ScaledTemplate(m_library.get(), id, scale);
        const DLGPROC handleNothing = [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; };
        Window page(templateBytes.empty()
                        ? nullptr
                        : CreateDialogIndirectParamW(m_library.get(),
                                                     reinterpret_cast<const DLGTEMPLATE*>(templateBytes.data()),
                                                     m_parent.get(),
                                                     handleNothing,
                                                     0));
        if (page != nullptr)
        {
            tsypr::pictures::FillSamples(page.get(), id, m_library.get());
        }
        return page;
    }

    Module m_library{LoadLibraryW(LibraryPath(GetParam()).c_str())};
    Window m_parent{
        CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW, 0, 0, 2000, 2000, nullptr, nullptr, nullptr, nullptr)};
};

// Dialog units of the page in pixels.
int Across(HWND page, int units)
{
    RECT area{0, 0, units, 0};
    MapDialogRect(page, &area);
    return area.right;
}

SIZE ClientSize(HWND window)
{
    RECT area{};
    GetClientRect(window, &area);
    return {area.right, area.bottom};
}

void ExpectEntriesFit(HWND page, HWND list, SIZE size)
{
    const auto count = static_cast<int>(SendMessageW(list, CB_GETCOUNT, 0, 0));
    EXPECT_GT(count, 0);
    for (int i = 0; i < count; ++i)
    {
        wchar_t text[128] = L"";
        SendMessageW(list, CB_GETLBTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
        EXPECT_LE(Ruler(list).Measure(text, DT_SINGLELINE | DT_NOPREFIX).cx + Across(page, kListEdges), size.cx)
            << testing::PrintToString(text);
    }
}

void ExpectStaticFits(HWND control, LONG style, const std::wstring& text, SIZE size)
{
    if ((style & SS_TYPEMASK) != SS_BITMAP)
    {
        const SIZE needed = Ruler(control).Measure(text, DT_WORDBREAK, size.cx);
        EXPECT_TRUE(needed.cx <= size.cx && needed.cy <= size.cy);
        return;
    }
    BITMAP picture{};
    auto* const bitmap = reinterpret_cast<HBITMAP>(SendMessageW(control, STM_GETIMAGE, IMAGE_BITMAP, 0));
    ASSERT_NE(GetObjectW(bitmap, sizeof(picture), &picture), 0);
    EXPECT_TRUE(picture.bmWidth <= size.cx && picture.bmHeight <= size.cy);
}

int BesideButtonText(LONG style)
{
    const LONG type = style & BS_TYPEMASK;
    return type == BS_GROUPBOX ? kFrameEnds : type == BS_PUSHBUTTON ? kButtonEdges : kMark;
}

void ExpectControlFits(HWND page, HWND control)
{
    const std::wstring text = TextOf(control);
    const LONG style = GetWindowLongW(control, GWL_STYLE);
    const SIZE size = ClientSize(control);
    SCOPED_TRACE(testing::Message() << GetDlgCtrlID(control) << " " << testing::PrintToString(text));
    wchar_t className[32] = L"";
    GetClassNameW(control, className, 32);
    if (_wcsicmp(className, L"ComboBox") == 0)
    {
        ExpectEntriesFit(page, control, size);
    }
    else if (_wcsicmp(className, L"Static") == 0)
    {
        ExpectStaticFits(control, style, text, size);
    }
    else if (_wcsicmp(className, L"Button") == 0)
    {
        const SIZE needed = Ruler(control).Measure(text, DT_SINGLELINE);
        EXPECT_LE(needed.cx + Across(page, BesideButtonText(style)), size.cx);
        EXPECT_LE(needed.cy, size.cy);
    }
    else if (_wcsicmp(className, L"Edit") == 0)
    {
        EXPECT_LE(Ruler(control).Measure(L"999", DT_SINGLELINE).cx, size.cx);
    }
}

// As wide as the tabs of a property sheet with such a page.
Window CreateTabs(HWND page)
{
    const SIZE size = ClientSize(page);
    Window tabs(CreateWindowExW(
        0, WC_TABCONTROLW, L"", WS_CHILD | TCS_MULTILINE, 0, 0, size.cx, size.cy, page, nullptr, nullptr, nullptr));
    SendMessageW(tabs.get(), WM_SETFONT, static_cast<WPARAM>(SendMessageW(page, WM_GETFONT, 0, 0)), FALSE);
    RECT area{0, 0, size.cx, size.cy};
    SendMessageW(tabs.get(), TCM_ADJUSTRECT, TRUE, reinterpret_cast<LPARAM>(&area));
    SetWindowPos(tabs.get(), nullptr, 0, 0, area.right - area.left, area.bottom - area.top, SWP_NOMOVE | SWP_NOZORDER);
    return tabs;
}

TEST_P(PageLayout, TextsAndPicturesAreNotCut)
{
    for (const int scale : kScales)
    {
        const Window first = CreatePage(kPages[0], scale);
        const Window tabs = CreateTabs(first.get());
        for (const int id : kPages)
        {
            SCOPED_TRACE(testing::Message() << "page " << id << ", " << scale << " %");
            const Window page = CreatePage(id, scale);
            ASSERT_NE(page, nullptr);
            for (HWND control = GetWindow(page.get(), GW_CHILD); control != nullptr;
                 control = GetWindow(control, GW_HWNDNEXT))
            {
                ExpectControlFits(page.get(), control);
            }
            std::wstring title = TextOf(page.get());
            TCITEMW tab{};
            tab.mask = TCIF_TEXT;
            tab.pszText = title.data();
            EXPECT_NE(SendMessageW(tabs.get(), TCM_INSERTITEMW, 10, reinterpret_cast<LPARAM>(&tab)), -1);
        }
        EXPECT_EQ(SendMessageW(tabs.get(), TCM_GETROWCOUNT, 0, 0), 1) << scale << " %";
    }
}

INSTANTIATE_TEST_SUITE_P(
    Libraries,
    PageLayout,
    testing::Values(
        "en_us_409", "de_de_407", "es_es_40a", "fr_fr_40c", "ja_jp_411", "ko_kr_412", "zh_cn_804", "zh_tw_404"),
    [](const auto& library) { return std::string(library.param); });

} // namespace
