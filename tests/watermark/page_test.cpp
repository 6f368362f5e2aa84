#include "watermark/watermark_page.h"
#include "tests/ui/page_fixture.h"
#include "tests/watermark/input_box_driver.h"
#include "tests/watermark/watermark_fixture.h"
#include "watermark/preview.h"

#include <random>

namespace tsypr::test
{
namespace
{

const std::vector<std::wstring> kBuiltIn = {L"No Watermark", L"Confidential", L"Top Secret"};

class WatermarkPage : public PageTest
{
protected:
    // An odd size before the block: it lies at an odd address.
    WatermarkPage()
    {
        dm = DeviceMode(sizeof(DEVMODEW), kPrivateDevModeSize + 1);
        context.devMode = dm.Get();
    }
    ~WatermarkPage() override
    {
        Close();
        ReleasePreview();
        EXPECT_EQ(0U, LiveObjects());
        g_chooseFont = nullptr;
    }

    // Opens the page on a device mode with the block, of which the context has its copy.
    void OpenPage(const WatermarkBlock& block)
    {
        std::memcpy(dm.Private().watermark, &block, sizeof(block));
        context.watermark = block;
        Open(IDD_WATERMARK, WatermarkProc);
    }

    std::vector<std::wstring> Texts() const
    {
        std::vector<std::wstring> texts;
        for (WPARAM i = 0; i < static_cast<WPARAM>(Send(IDC_WATERMARK_TEXT, CB_GETCOUNT)); ++i)
        {
            wchar_t text[300] = {};
            Send(IDC_WATERMARK_TEXT, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(text));
            texts.emplace_back(text);
        }
        return texts;
    }
    // Gives how many changes the sheet was told.
    int Click(int id) const
    {
        s_changes = 0;
        Send(id, BM_CLICK);
        return s_changes;
    }
    HBITMAP Preview() const
    {
        return reinterpret_cast<HBITMAP>(Send(IDC_WATERMARK_PREVIEW, STM_GETIMAGE, IMAGE_BITMAP));
    }
    // Whether the preview has colored pixels; not when there is none.
    bool HasInk() const
    {
        const auto isColored = [](uint32_t value) { return (value & 0xFF) / 64 != (value >> 16) / 64; };
        const std::vector<uint32_t> values = Preview() != nullptr ? Pixels(Preview()).values : std::vector<uint32_t>();
        return std::any_of(values.begin(), values.end(), isColored);
    }
};

TEST_F(WatermarkPage, OpensWithTheDeviceModesText)
{
    std::vector<std::tuple<std::wstring, int, int, std::wstring>> cases = {{L"", -1, 0, L"No Watermark"},
                                                                           {L"no watermark", 0, 0, L"no watermark"},
                                                                           {L"Confidential", 1, 1, L"Confidential"},
                                                                           {L"top secret", 2, 2, L"top secret"}};
    for (const std::wstring& text : kOddTexts)
    {
        cases.emplace_back(text, -1, 3, L"(unchanged)");
    }
    for (const auto& [text, found, selected, inContext] : cases)
    {
        WatermarkBlock block = Block(text, -25);
        std::memcpy(dm.Private().watermark, &block, sizeof(block));
        context.watermark = Block(L"(unchanged)");
        log.Take();
        Open(IDD_WATERMARK, WatermarkProc);
        EXPECT_EQ("verbose InitializeWatermarkText, get index: " + std::to_string(found) + ".", log.Take().front());
        EXPECT_EQ(selected, Send(IDC_WATERMARK_TEXT, CB_GETCURSEL));
        EXPECT_EQ(inContext, context.watermark.text);
        std::vector<std::wstring> texts = kBuiltIn;
        texts.insert(texts.end(), selected == 3 ? 1 : 0, text.substr(0, 127));
        EXPECT_EQ(texts, Texts());
        EXPECT_EQ(selected != 0, HasInk());
        // Drawing rounded the height of the font; nothing else changed but the angle.
        WatermarkBlock after = {};
        std::memcpy(&after, dm.Private().watermark, sizeof(after));
        EXPECT_EQ(selected != 0 ? -24 : -25, after.font.lfHeight);
        EXPECT_EQ(-48, context.watermark.font.lfHeight);
        after.font = block.font;
        EXPECT_EQ(0, std::memcmp(&after, &block, sizeof(block)));
    }
    EXPECT_EQ(L"Preview:", SpokenName(IDC_WATERMARK_PREVIEW));
}

TEST_F(WatermarkPage, ShowsTheContextsBlockAndIsOffWhereTheDeviceModeHasNone)
{
    for (const bool hasBlock : {true, false})
    {
        dm.Private().signature = hasBlock ? kPrivateDevModeSignature : 0;
        OpenPage(Block(L"Mine", -25));
        EXPECT_EQ(hasBlock ? "No Watermark|Confidential|Top Secret|>Mine"
                           : "x No Watermark|Confidential|Top Secret|>Mine",
                  List(IDC_WATERMARK_TEXT));
        for (int id = IDC_WATERMARK_FONT; id <= IDC_WATERMARK_FIRST_PAGE; ++id)
        {
            EXPECT_TRUE(Item(id) == nullptr || (IsWindowEnabled(Item(id)) != FALSE) == hasBlock) << id;
        }
        EXPECT_EQ(hasBlock ? -25 : -24, context.watermark.font.lfHeight);
        EXPECT_TRUE(HasInk());
    }
    context.watermark = Block(L"");
    Open(IDD_WATERMARK, WatermarkProc);
    EXPECT_STREQ(L"No Watermark", context.watermark.text);
}

TEST_F(WatermarkPage, ShowsAndStoresPlacementAndFlag)
{
    const Messages error = {"error InitializeWatermarkOthers, Failed to execute CheckRadioButton: 87 ."};
    const std::tuple<uint32_t, uint32_t, Messages> cases[] = {
        {0, 0, {}}, {1, 1, {}}, {2, 7, error}, {0xFFFFFFFF, 0x80000000, error}};
    for (const auto& [placement, flag, errors] : cases)
    {
        WatermarkBlock block = Block(L"");
        block.placement = placement;
        block.flag = flag;
        OpenPage(block);
        EXPECT_EQ(errors, log.TakeErrors());
        EXPECT_EQ(placement == 0 ? "on" : "off", Button(IDC_WATERMARK_IN_FRONT));
        EXPECT_EQ(placement == 1 ? "on" : "off", Button(IDC_WATERMARK_BEHIND));
        EXPECT_EQ(flag != 0 ? "on" : "off", Button(IDC_WATERMARK_FIRST_PAGE));
        EXPECT_EQ(placement, context.watermark.placement);
        for (const int button : {IDC_WATERMARK_BEHIND, IDC_WATERMARK_IN_FRONT})
        {
            EXPECT_GE(Click(button), 1);
            EXPECT_EQ(button == IDC_WATERMARK_BEHIND ? 1U : 0U, context.watermark.placement);
        }
        for (const bool set : {flag == 0, flag != 0})
        {
            EXPECT_EQ(1, Click(IDC_WATERMARK_FIRST_PAGE));
            EXPECT_EQ(set ? 1U : 0U, context.watermark.flag);
        }
    }
    EXPECT_EQ(FALSE, Command(9999));
    ExpectPageManners(&UIContext::watermarkPage, {IDC_WATERMARK_TEXT}, {IDC_WATERMARK_DELETE});
}

TEST_F(WatermarkPage, FollowsTheSelectionAndDeletesAllTextsButTheFirst)
{
    OpenPage(Block(L"Mine"));
    for (const int index : {1, 2, 3, 0, 2})
    {
        log.Take();
        Choose(IDC_WATERMARK_TEXT, index);
        const std::wstring text = Texts()[static_cast<size_t>(index)];
        EXPECT_EQ(text, context.watermark.text);
        EXPECT_EQ("verbose WatermarkProc, text: " + std::string(text.begin(), text.end()) + ".", log.Take().front());
        EXPECT_EQ(index != 0, HasInk());
        EXPECT_EQ(index != 0 ? 1U : 0U, LiveObjects());
    }
    s_changes = 0;
    Choose(IDC_WATERMARK_TEXT, -1);
    EXPECT_STREQ(L"Top Secret", context.watermark.text);
    EXPECT_EQ(0, s_changes);
    const std::pair<int, const char*> cases[] = {{1, ">No Watermark|Top Secret|Mine"},
                                                 {2, ">No Watermark|Top Secret"},
                                                 {0, ">No Watermark|Top Secret"},
                                                 {-1, ">No Watermark|Top Secret"},
                                                 {1, ">No Watermark"}};
    for (const auto& [selected, left] : cases)
    {
        Choose(IDC_WATERMARK_TEXT, selected);
        EXPECT_EQ(1, Click(IDC_WATERMARK_DELETE));
        EXPECT_EQ(left, List(IDC_WATERMARK_TEXT));
        EXPECT_STREQ(L"No Watermark", context.watermark.text);
        EXPECT_EQ(nullptr, Preview());
    }
    // A list that does not let go of a text.
    OpenPage(Block(L"Mine"));
    static WNDPROC s_listProcedure;
    const WNDPROC keeping = [](HWND list, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT
    { return message == CB_DELETESTRING ? CB_ERR : CallWindowProcW(s_listProcedure, list, message, wParam, lParam); };
    s_listProcedure = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(Item(IDC_WATERMARK_TEXT), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(keeping)));
    log.Take();
    SetLastError(5);
    Click(IDC_WATERMARK_DELETE);
    EXPECT_TRUE(log.Take().front().starts_with("verbose WatermarkProc, failed to select: "));
    EXPECT_EQ(">No Watermark|Confidential|Top Secret|Mine", List(IDC_WATERMARK_TEXT));
}

TEST_F(WatermarkPage, TakesTheFontOnlyWhenItsDialogIsConfirmed)
{
    WatermarkBlock block = Block(L"Mine");
    block.pointSize = 360;
    OpenPage(block);
    block = context.watermark;
    const HBITMAP preview = Preview();
    EXPECT_EQ(0, Click(IDC_WATERMARK_FONT)); // the library lacks the dialog
    for (const BOOL confirmed : {FALSE, TRUE})
    {
        g_chooseFont = [this, confirmed](CHOOSEFONTW& options)
        {
            EXPECT_EQ(sizeof(CHOOSEFONTW), options.lStructSize);
            EXPECT_EQ(dialog, options.hwndOwner);
            EXPECT_EQ("321 360 255", Numbers({options.Flags, options.iPointSize, options.rgbColors}));
            EXPECT_STREQ(L"Times New Roman", options.lpLogFont->lfFaceName);
            options.lpLogFont->lfHeight = -30;
            options.iPointSize = 225;
            options.rgbColors = RGB(0, 0, 255);
            return confirmed;
        };
        EXPECT_EQ(0, std::memcmp(&block, &context.watermark, sizeof(block)));
        EXPECT_EQ(preview, Preview());
        log.Take();
        EXPECT_EQ(confirmed, Click(IDC_WATERMARK_FONT));
    }
    EXPECT_EQ("verbose WatermarkProc, fontsize: 225, font height: -30 .", log.Take().front());
    EXPECT_EQ("-30 225 16711680",
              Numbers({context.watermark.font.lfHeight, context.watermark.pointSize, context.watermark.color}));
    EXPECT_TRUE(HasInk());
}

TEST_F(WatermarkPage, AddsWhatTheInputBoxAccepted)
{
    OpenPage(Block(L"Mine"));
    std::vector<std::wstring> texts = Texts();
    const HBITMAP preview = Preview();
    const auto add = [&](const std::wstring& typed, WPARAM key, bool added)
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
            EXPECT_EQ(0, Click(IDC_WATERMARK_ADD)) << "the text is only offered";
        }
        texts.insert(texts.end(), added ? 1 : 0, typed);
        EXPECT_EQ(texts, Texts());
        EXPECT_EQ(3, Send(IDC_WATERMARK_TEXT, CB_GETCURSEL));
        EXPECT_STREQ(L"Mine", context.watermark.text);
        EXPECT_EQ(preview, Preview());
    };
    add(L"Draft", VK_RETURN, true);
    add(L"Copy", VK_ESCAPE, false);
    add(L"TOP SECRET", VK_RETURN, false);
    add(L"", VK_RETURN, false);
    add(L"Copy", VK_RETURN, true);
    // The text of the last accepted box is gone from the list: cancelling does not bring it back.
    Send(IDC_WATERMARK_TEXT, CB_DELETESTRING, 5);
    texts.pop_back();
    add(L"Other", VK_ESCAPE, false);
    // A box that cannot be shown adds nothing either.
    FailCall("GetDC");
    Click(IDC_WATERMARK_ADD);
    EXPECT_EQ(texts, Texts());
}

// Also when the control itself became smaller since, as one for pictures may when its picture is taken away.
TEST_F(WatermarkPage, DrawsThePreviewAtTheSizeOfItsControl)
{
    OpenPage(Block(L"Mine"));
    HWND control = Item(IDC_WATERMARK_PREVIEW);
    for (const SIZE size : {SIZE{252, 336}, SIZE{84, 112}, SIZE{336, 448}})
    {
        SetWindowPos(control, nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER);
        CallProcedure(WM_INITDIALOG, reinterpret_cast<LPARAM>(&page));
        for (const int index : {3, 0, 1})
        {
            Choose(IDC_WATERMARK_TEXT, index);
            EXPECT_EQ(index == 0, Preview() == nullptr);
            if (index != 0)
            {
                const Pixels pixels(Preview());
                EXPECT_EQ(Numbers({size.cx, size.cy}), Numbers({pixels.width, pixels.height}));
            }
            SetWindowPos(control, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOZORDER);
        }
    }
}

TEST_F(WatermarkPage, WorksWithoutItsPictureAndWithAnyFont)
{
    for (const bool hasModule : {true, false})
    {
        OpenPage(Block(L""));
        HMODULE resources = ResourceModule;
        ResourceModule = hasModule ? resources : nullptr;
        FailCall("LoadImageW");
        Choose(IDC_WATERMARK_TEXT, 1);
        ResourceModule = resources;
        EXPECT_EQ(nullptr, Preview());
        EXPECT_EQ(Messages{"error Watermarker::CreateBMPPreview, failed to get object."}, log.TakeErrors());
        EXPECT_STREQ(L"Confidential", context.watermark.text);
        FailCall("LoadImageW", 0);
        Choose(IDC_WATERMARK_TEXT, 2);
        EXPECT_TRUE(HasInk());
    }
    std::mt19937 random(2);
    WatermarkBlock block = Block(L"Mine");
    for (int i = 0; i < 30; ++i)
    {
        auto* font = reinterpret_cast<BYTE*>(&block.font);
        std::generate_n(font, sizeof(block.font), [&random] { return static_cast<BYTE>(random()); });
        OpenPage(block);
        g_chooseFont = [](CHOOSEFONTW& options)
        { return wcsnlen(options.lpLogFont->lfFaceName, LF_FACESIZE) < LF_FACESIZE ? TRUE : FALSE; };
        EXPECT_EQ(1, Click(IDC_WATERMARK_FONT));
        EXPECT_NE(nullptr, Preview());
    }
}

} // namespace
} // namespace tsypr::test
