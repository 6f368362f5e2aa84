#include "watermark/watermark_page.h"
#include "language/resource_ids.h"
#include "tests/module/heap_blocks.h"
#include "tests/remote/device_mode_builder.h"
#include "tests/watermark/input_box_driver.h"
#include "tests/watermark/watermark_fixture.h"
#include "watermark/preview.h"

#include <random>

namespace tsypr::test
{
namespace
{

struct SetResult
{
    HANDLE sheet;
    UINT function;
    LPARAM page;
    LPARAM result;
};
std::vector<SetResult> g_results;

class WatermarkPage : public WatermarkTest
{
protected:
    // An odd size before the block: it lies at an odd address.
    WatermarkPage() : devMode(sizeof(DEVMODEW), kPrivateDevModeSize + 1)
    {
        sheet = CreateWindowExW(0, L"Static", L"", WS_POPUP, 0, 0, 500, 500, nullptr, nullptr, nullptr, nullptr);
        context.devMode = devMode.Get();
        context.comPropSheetHandle = reinterpret_cast<HANDLE>(0x11);
        context.watermarkPage = reinterpret_cast<HANDLE>(0x22);
        context.comPropSheet = [](HANDLE handle, UINT function, LPARAM ofPage, LPARAM result) -> LONG_PTR
        {
            g_results.push_back({handle, function, ofPage, result});
            return 1;
        };
        sheetPage.lParam = reinterpret_cast<LPARAM>(&context);
        g_results.clear();
    }
    ~WatermarkPage() override
    {
        DestroyWindow(sheet);
        ReleasePreview();
        EXPECT_EQ(0U, LiveObjects());
    }

    // Opens the page on a device mode with the block, of which the context has its copy.
    void Open(const WatermarkBlock& block)
    {
        std::memcpy(devMode.Private().watermark, &block, sizeof(block));
        context.watermark = block;
        Open();
    }
    void Open()
    {
        if (page != nullptr)
        {
            DestroyWindow(page);
        }
        page = CreateDialogParamW(ResourceModule,
                                  MAKEINTRESOURCEW(IDD_WATERMARK),
                                  sheet,
                                  WatermarkProc,
                                  reinterpret_cast<LPARAM>(&sheetPage));
        ASSERT_NE(nullptr, page);
    }

    LRESULT List(UINT message, WPARAM wParam = 0, const wchar_t* text = nullptr) const
    {
        return SendDlgItemMessageW(page, IDC_WATERMARK_TEXT, message, wParam, reinterpret_cast<LPARAM>(text));
    }
    std::vector<std::wstring> Texts() const
    {
        std::vector<std::wstring> texts;
        for (LRESULT i = 0; i < List(CB_GETCOUNT); ++i)
        {
            wchar_t text[300] = {};
            List(CB_GETLBTEXT, static_cast<WPARAM>(i), text);
            texts.emplace_back(text);
        }
        return texts;
    }
    void Select(int index) const
    {
        List(CB_SETCURSEL, static_cast<WPARAM>(index));
        Command(IDC_WATERMARK_TEXT, CBN_SELCHANGE);
    }
    INT_PTR Command(int id, int notification = BN_CLICKED) const
    {
        return WatermarkProc(
            page, WM_COMMAND, MAKEWPARAM(id, notification), reinterpret_cast<LPARAM>(GetDlgItem(page, id)));
    }
    void Click(int id) const
    {
        SendDlgItemMessageW(page, id, BM_CLICK, 0, 0);
    }
    HBITMAP Preview() const
    {
        return reinterpret_cast<HBITMAP>(
            SendDlgItemMessageW(page, IDC_WATERMARK_PREVIEW, STM_GETIMAGE, IMAGE_BITMAP, 0));
    }
    // Colored pixels of the preview; none when there is no preview.
    size_t Ink() const
    {
        size_t ink = 0;
        if (Preview() != nullptr)
        {
            for (const uint32_t value : Pixels(Preview()).values)
            {
                ink += (value & 0xFF) / 64 != (value >> 16) / 64 ? 1 : 0;
            }
        }
        return ink;
    }

    DeviceMode devMode;
    UIContext context = {};
    PROPSHEETPAGEW sheetPage = {};
    HWND sheet;
    HWND page = nullptr;
};

TEST_F(WatermarkPage, OpensWithTheDeviceModesText)
{
    const std::wstring own[] = {L"Mine",
                                std::wstring(127, L'x'),
                                std::wstring(128, L'x'),
                                L"e\u0301a\u0308\u0323",
                                L"\u05E9\u05DC\u05D5\u05DD",
                                L"\U0001F600\U00020BB7",
                                L"\xD800x"};
    struct Case
    {
        std::wstring text;
        int found;
        int selected;
        std::wstring inContext;
    };
    std::vector<Case> cases = {{L"", -1, 0, L"No Watermark"},
                               {L"no watermark", 0, 0, L"no watermark"},
                               {L"Confidential", 1, 1, L"Confidential"},
                               {L"top secret", 2, 2, L"top secret"}};
    for (const std::wstring& text : own)
    {
        cases.push_back({text, -1, 3, L"(unchanged)"});
    }
    for (const Case& c : cases)
    {
        WatermarkBlock block = Block(c.text, -25);
        std::memcpy(devMode.Private().watermark, &block, sizeof(block));
        context.watermark = Block(L"(unchanged)");
        log.Take();
        Open();
        EXPECT_EQ("verbose InitializeWatermarkText, get index: " + std::to_string(c.found) + ".", log.Take().front());
        EXPECT_EQ(c.selected, List(CB_GETCURSEL));
        EXPECT_EQ(c.inContext, context.watermark.text);
        std::vector<std::wstring> texts = {L"No Watermark", L"Confidential", L"Top Secret"};
        if (c.selected == 3)
        {
            texts.push_back(c.text.substr(0, 127));
        }
        EXPECT_EQ(texts, Texts());
        EXPECT_EQ(c.selected != 0, Ink() > 0);
        // Drawing rounded the height of the font; nothing else changed but the angle.
        WatermarkBlock after = {};
        std::memcpy(&after, devMode.Private().watermark, sizeof(after));
        EXPECT_EQ(c.selected != 0 ? -24 : -25, after.font.lfHeight);
        EXPECT_EQ(-48, context.watermark.font.lfHeight);
        after.font = block.font;
        EXPECT_EQ(0, std::memcmp(&after, &block, sizeof(block)));
    }
}

TEST_F(WatermarkPage, UsesTheContextsBlockWhereTheDeviceModeHasNone)
{
    devMode.Private().signature = 0;
    Open(Block(L"Mine", -25));
    EXPECT_EQ(3, List(CB_GETCURSEL));
    EXPECT_EQ(-24, context.watermark.font.lfHeight);
    EXPECT_GT(Ink(), 0U);
    context.watermark = Block(L"");
    Open();
    EXPECT_STREQ(L"No Watermark", context.watermark.text);
}

TEST_F(WatermarkPage, ShowsAndStoresPlacementAndFlag)
{
    const Messages error = {"error InitializeWatermarkOthers, Failed to execute CheckRadioButton: 87 ."};
    const struct
    {
        uint32_t placement, flag;
        Messages errors;
    } cases[] = {{0, 0, {}}, {1, 1, {}}, {2, 7, error}, {0xFFFFFFFF, 0x80000000, error}};
    for (const auto& c : cases)
    {
        WatermarkBlock block = Block(L"");
        block.placement = c.placement;
        block.flag = c.flag;
        Open(block);
        EXPECT_EQ(c.errors, log.TakeErrors());
        EXPECT_EQ(c.placement == 0, IsDlgButtonChecked(page, IDC_WATERMARK_IN_FRONT));
        EXPECT_EQ(c.placement == 1, IsDlgButtonChecked(page, IDC_WATERMARK_BEHIND));
        EXPECT_EQ(c.flag != 0, IsDlgButtonChecked(page, IDC_WATERMARK_FIRST_PAGE));
        EXPECT_EQ(c.placement, context.watermark.placement);
        Click(IDC_WATERMARK_BEHIND);
        EXPECT_EQ(1U, context.watermark.placement);
        Click(IDC_WATERMARK_IN_FRONT);
        EXPECT_EQ(0U, context.watermark.placement);
        for (const bool flag : {c.flag == 0, c.flag != 0})
        {
            Click(IDC_WATERMARK_FIRST_PAGE);
            EXPECT_EQ(flag ? 1U : 0U, context.watermark.flag);
        }
    }
}

TEST_F(WatermarkPage, FollowsTheSelection)
{
    Open(Block(L"Mine"));
    for (const int index : {1, 2, 3, 0, 2})
    {
        log.Take();
        Select(index);
        const std::wstring text = Texts()[static_cast<size_t>(index)];
        EXPECT_EQ(text, context.watermark.text);
        EXPECT_EQ("verbose WatermarkProc, text: " + std::string(text.begin(), text.end()) + ".", log.Take().front());
        EXPECT_EQ(index != 0, Ink() > 0);
        EXPECT_EQ(index != 0 ? 1U : 0U, LiveObjects());
    }
    Select(-1);
    EXPECT_STREQ(L"Top Secret", context.watermark.text);
}

TEST_F(WatermarkPage, DeletesAllTextsButTheFirst)
{
    const struct
    {
        int selected;
        std::vector<std::wstring> left;
    } cases[] = {{1, {L"No Watermark", L"Top Secret", L"Mine"}},
                 {2, {L"No Watermark", L"Top Secret"}},
                 {0, {L"No Watermark", L"Top Secret"}},
                 {-1, {L"No Watermark", L"Top Secret"}},
                 {1, {L"No Watermark"}}};
    Open(Block(L"Mine"));
    for (const auto& c : cases)
    {
        Select(c.selected);
        Click(IDC_WATERMARK_DELETE);
        EXPECT_EQ(c.left, Texts());
        EXPECT_EQ(0, List(CB_GETCURSEL));
        EXPECT_STREQ(L"No Watermark", context.watermark.text);
        EXPECT_EQ(nullptr, Preview());
    }
}

TEST_F(WatermarkPage, TakesTheFontOnlyWhenItsDialogIsConfirmed)
{
    WatermarkBlock block = Block(L"Mine");
    block.pointSize = 360;
    Open(block);
    block = context.watermark;
    const HBITMAP preview = Preview();
    Click(IDC_WATERMARK_FONT); // the library lacks the dialog
    for (const BOOL confirmed : {FALSE, TRUE})
    {
        g_chooseFont = [this, confirmed](CHOOSEFONTW& options)
        {
            EXPECT_EQ(sizeof(CHOOSEFONTW), options.lStructSize);
            EXPECT_EQ(page, options.hwndOwner);
            EXPECT_EQ(321U, options.Flags);
            EXPECT_EQ(360, options.iPointSize);
            EXPECT_EQ(RGB(255, 0, 0), options.rgbColors);
            EXPECT_STREQ(L"Times New Roman", options.lpLogFont->lfFaceName);
            options.lpLogFont->lfHeight = -30;
            options.iPointSize = 225;
            options.rgbColors = RGB(0, 0, 255);
            return confirmed;
        };
        EXPECT_EQ(0, std::memcmp(&block, &context.watermark, sizeof(block)));
        EXPECT_EQ(preview, Preview());
        log.Take();
        Click(IDC_WATERMARK_FONT);
    }
    EXPECT_EQ("verbose WatermarkProc, fontsize: 225, font height: -30 .", log.Take().front());
    EXPECT_EQ(-30, context.watermark.font.lfHeight);
    EXPECT_EQ(225, context.watermark.pointSize);
    EXPECT_EQ(RGB(0, 0, 255), context.watermark.color);
    EXPECT_GT(Ink(), 0U);
}

TEST_F(WatermarkPage, AddsWhatTheInputBoxAccepted)
{
    Open(Block(L"Mine"));
    std::vector<std::wstring> texts = Texts();
    const HBITMAP preview = Preview();
    const auto add = [this, &texts, preview](const std::wstring& typed, WPARAM key, bool added)
    {
        const auto steps = [&typed, key](const Box& box)
        {
            wchar_t text[64] = {};
            SendMessageW(box.window, WM_GETTEXT, 64, reinterpret_cast<LPARAM>(text));
            EXPECT_STREQ(L"Watermark text input box", text);
            box.Type(typed);
            box.Press(key);
        };
        {
            const BoxDriver driver(steps);
            Click(IDC_WATERMARK_ADD);
        }
        texts.insert(texts.end(), added ? 1 : 0, typed);
        EXPECT_EQ(texts, Texts());
        EXPECT_EQ(3, List(CB_GETCURSEL));
        EXPECT_STREQ(L"Mine", context.watermark.text);
        EXPECT_EQ(preview, Preview());
    };
    add(L"Draft", VK_RETURN, true);
    add(L"Copy", VK_ESCAPE, false);
    add(L"TOP SECRET", VK_RETURN, false);
    add(L"", VK_RETURN, false);
    add(L"Copy", VK_RETURN, true);
    // The text of the last accepted box is gone from the list: cancelling does not bring it back.
    List(CB_DELETESTRING, 5);
    texts.pop_back();
    add(L"Other", VK_ESCAPE, false);
    // A box that cannot be shown adds nothing either.
    FailCall("GetDC");
    Click(IDC_WATERMARK_ADD);
    EXPECT_EQ(texts, Texts());
}

TEST_F(WatermarkPage, AnswersItsSheet)
{
    Open(Block(L""));
    const auto notify = [this](UINT code)
    {
        NMHDR header = {sheet, 0, code};
        return WatermarkProc(page, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header));
    };
    for (const UINT code : {PSN_SETACTIVE, PSN_RESET})
    {
        EXPECT_NE(0, notify(code));
        EXPECT_TRUE(g_results.empty());
    }
    SetWindowLongPtrW(page, DWLP_MSGRESULT, 5);
    EXPECT_NE(0, notify(PSN_APPLY));
    EXPECT_EQ(PSNRET_NOERROR, GetWindowLongPtrW(page, DWLP_MSGRESULT));
    ASSERT_EQ(1U, g_results.size());
    EXPECT_EQ(context.comPropSheetHandle, g_results[0].sheet);
    EXPECT_EQ(static_cast<UINT>(CPSFUNC_SET_RESULT), g_results[0].function);
    EXPECT_EQ(reinterpret_cast<LPARAM>(context.watermarkPage), g_results[0].page);
    EXPECT_EQ(CPSUI_OK, g_results[0].result);
    EXPECT_EQ(0, notify(PSN_KILLACTIVE));
    EXPECT_NE(0, WatermarkProc(page, WM_DESTROY, 0, 0));
    EXPECT_EQ(0, WatermarkProc(page, WM_SIZE, 0, 0));
    EXPECT_EQ(0, Command(9999));
    EXPECT_EQ(0, Command(IDC_WATERMARK_TEXT, CBN_DROPDOWN));
}

// Also when the control itself became smaller since, as one for pictures may when its picture is taken away.
TEST_F(WatermarkPage, DrawsThePreviewAtTheSizeOfItsControl)
{
    Open(Block(L"Mine"));
    HWND control = GetDlgItem(page, IDC_WATERMARK_PREVIEW);
    for (const SIZE size : {SIZE{252, 336}, SIZE{84, 112}, SIZE{336, 448}})
    {
        SetWindowPos(control, nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER);
        WatermarkProc(page, WM_INITDIALOG, 0, reinterpret_cast<LPARAM>(&sheetPage));
        for (const int index : {3, 0, 1})
        {
            Select(index);
            if (index != 0)
            {
                const Pixels pixels(Preview());
                EXPECT_EQ(size.cx, pixels.width);
                EXPECT_EQ(size.cy, pixels.height);
            }
            SetWindowPos(control, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOZORDER);
        }
    }
}

TEST_F(WatermarkPage, WorksWithoutItsPictureAndWithAnyFont)
{
    for (const bool hasModule : {true, false})
    {
        Open(Block(L""));
        HMODULE resources = ResourceModule;
        ResourceModule = hasModule ? resources : nullptr;
        FailCall("LoadImageW");
        Select(1);
        ResourceModule = resources;
        EXPECT_EQ(nullptr, Preview());
        EXPECT_EQ(Messages{"error Watermarker::CreateBMPPreview, failed to get object."}, log.TakeErrors());
        EXPECT_STREQ(L"Confidential", context.watermark.text);
        FailCall("LoadImageW", 0);
        Select(2);
        EXPECT_GT(Ink(), 0U);
    }
    std::mt19937 random(2);
    WatermarkBlock block = Block(L"Mine");
    for (int i = 0; i < 30; ++i)
    {
        std::generate_n(reinterpret_cast<BYTE*>(&block.font),
                        sizeof(block.font),
                        [&random] { return static_cast<BYTE>(random()); });
        Open(block);
        g_chooseFont = [](CHOOSEFONTW& options)
        {
            EXPECT_LT(wcsnlen(options.lpLogFont->lfFaceName, LF_FACESIZE), size_t{LF_FACESIZE});
            return TRUE;
        };
        Click(IDC_WATERMARK_FONT);
        EXPECT_NE(nullptr, Preview());
    }
}

TEST_F(WatermarkPage, OpensAgainAndAgainWithoutGrowth)
{
    const auto open = [this](int times)
    {
        for (int i = 0; i < times; ++i)
        {
            Open(Block(i % 2 == 0 ? L"Mine" : L""));
            if (i % 5 == 0)
            {
                Select(1);
            }
            EXPECT_LE(LiveObjects(), 1U);
        }
        log.Take();
        TakeCalls();
        return BusyBlocks();
    };
    open(10);
    const size_t before = open(10);
    EXPECT_LE(open(500), before + 2);
}

} // namespace
} // namespace tsypr::test
