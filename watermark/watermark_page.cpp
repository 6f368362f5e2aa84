#include "watermark/watermark_page.h"

#include "language/resource_ids.h"
#include "module/interface_dll.h"
#include "module/log.h"
#include "ui/page_controls.h"
#include "ui/property_page.h"
#include "watermark/font_dialog.h"
#include "watermark/input_box.h"
#include "watermark/preview.h"
#include "watermark/resource_text.h"

namespace tsypr
{
namespace
{

constexpr char kFunction[] = "WatermarkProc";
constexpr const wchar_t* kBuiltInTexts[] = {kNoWatermark, L"Confidential", L"Top Secret"};
constexpr WPARAM kNoWatermarkIndex = 0;
// Where a text of the user's own comes to stand after the three above; fixed on purpose.
constexpr WPARAM kOwnTextIndex = 3;
constexpr size_t kBoxTextChars = 64;

int LastError() noexcept
{
    return static_cast<int>(GetLastError());
}

// A copy of the device mode's watermark block, which may lie there at any address; of the context's one when the device
// mode has none. Drawing changes the font, which goes back at the end.
class DeviceModeBlock
{
public:
    explicit DeviceModeBlock(UIContext& context) noexcept
        : m_context(context), m_private(GetPrivateDevMode(context.devMode)), block(context.watermark)
    {
        if (m_private != nullptr)
        {
            std::memcpy(&block, m_private->watermark, sizeof(block));
        }
    }
    DeviceModeBlock(const DeviceModeBlock&) = delete;
    DeviceModeBlock& operator=(const DeviceModeBlock&) = delete;
    ~DeviceModeBlock()
    {
        if (m_private != nullptr)
        {
            std::memcpy(m_private->watermark + offsetof(WatermarkBlock, font), &block.font, sizeof(block.font));
        }
        else
        {
            m_context.watermark.font = block.font;
        }
    }

private:
    UIContext& m_context;
    PrivateDevMode* m_private;

public:
    WatermarkBlock block;
};

LRESULT SendToList(HWND page, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) noexcept
{
    return SendDlgItemMessageW(page, IDC_WATERMARK_TEXT, message, wParam, lParam);
}

void AddToList(HWND page, const wchar_t* text) noexcept
{
    SendToList(page, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
}

// The search ignores letter case, and is meant to. Negative when the list has no such text.
int FindInList(HWND page, const wchar_t* text) noexcept
{
    constexpr auto kFromStart = static_cast<WPARAM>(-1);
    return static_cast<int>(SendToList(page, CB_FINDSTRINGEXACT, kFromStart, reinterpret_cast<LPARAM>(text)));
}

void StoreText(UIContext& context, const FixedText<kWatermarkTextChars>& text) noexcept
{
    std::memcpy(context.watermark.text, text.text, sizeof(context.watermark.text));
}

void StoreNoWatermark(UIContext& context) noexcept
{
    FixedText<kWatermarkTextChars> text = {};
    std::wcscpy(text.text, kNoWatermark);
    StoreText(context, text);
}

void InitializeWatermarkText(HWND page, UIContext& context, const WatermarkBlock& block) noexcept
{
    DropDownList(page, IDC_WATERMARK_TEXT).Enable();
    SendToList(page, CB_RESETCONTENT);
    for (const wchar_t* text : kBuiltInTexts)
    {
        AddToList(page, text);
    }
    const auto text = WatermarkText(block);
    const int index = FindInList(page, text.text);
    LogVerbose("%s, get index: %d.\n", "InitializeWatermarkText", index);
    if (index >= 0)
    {
        SendToList(page, CB_SETCURSEL, static_cast<WPARAM>(index));
        StoreText(context, text);
    }
    else if (text.text[0] != L'\0')
    {
        AddToList(page, text.text);
        SendToList(page, CB_SETCURSEL, kOwnTextIndex);
    }
    else
    {
        StoreNoWatermark(context);
        SendToList(page, CB_SETCURSEL, kNoWatermarkIndex);
    }
}

void InitializeWatermarkOthers(HWND page, const WatermarkBlock& block) noexcept
{
    if (!CheckChoice(page, IDC_WATERMARK_IN_FRONT, IDC_WATERMARK_BEHIND, block.placement))
    {
        LogError("%s, Failed to execute CheckRadioButton: %d .\n", "InitializeWatermarkOthers", LastError());
    }
    if (block.flag != 0)
    {
        SetChecked(page, IDC_WATERMARK_FIRST_PAGE, true);
    }
}

void Open(HWND page, const PROPSHEETPAGEW& sheetPage)
{
    UIContext& context = KeepPage(page, sheetPage);
    DeviceModeBlock fromDeviceMode(context);
    InitializeWatermarkText(page, context, fromDeviceMode.block);
    ShowFirstPreview(page, fromDeviceMode.block);
    NameByLabel(page, IDC_WATERMARK_PREVIEW);
    InitializeWatermarkOthers(page, fromDeviceMode.block);
    if (GetPrivateDevMode(context.devMode) == nullptr)
    {
        DisableControls(page); // the watermark has no place to go to
    }
}

bool OnTextSelected(HWND page, UIContext& context) noexcept
{
    const auto selected = static_cast<WPARAM>(SendToList(page, CB_GETCURSEL));
    const LRESULT length = SendToList(page, CB_GETLBTEXTLEN, selected);
    if (length < 0 || static_cast<size_t>(length) >= kWatermarkTextChars)
    {
        return false;
    }
    FixedText<kWatermarkTextChars> text = {};
    SendToList(page, CB_GETLBTEXT, selected, reinterpret_cast<LPARAM>(text.text));
    StoreText(context, text);
    LogVerbose("%s, text: %S.\n", kFunction, text.text);
    RenewPreview(page, context.watermark);
    return true;
}

// The dialog edits a copy, so that cancelling it changes nothing.
bool OnChooseFont(HWND page, UIContext& context) noexcept
{
    WatermarkBlock& block = context.watermark;
    LOGFONTW font = block.font;
    font.lfFaceName[LF_FACESIZE - 1] = L'\0';
    CHOOSEFONTW options = {};
    options.lStructSize = sizeof(options);
    options.hwndOwner = page;
    options.lpLogFont = &font;
    options.iPointSize = block.pointSize;
    options.Flags = CF_SCREENFONTS | CF_INITTOLOGFONTSTRUCT | CF_EFFECTS;
    options.rgbColors = block.color;
    if (ShowFontDialog(options) == FALSE)
    {
        return false;
    }
    block.font = font;
    block.color = options.rgbColors;
    block.pointSize = options.iPointSize;
    LogVerbose("%s, fontsize: %d, font height: %d .\n",
               kFunction,
               static_cast<int>(block.pointSize),
               static_cast<int>(font.lfHeight));
    RenewPreview(page, context.watermark);
    return true;
}

// The new text is only offered; the user selects it afterwards.
void OnAddText(HWND page) noexcept
{
    const auto title =
        ResourceText<kBoxTextChars>(ResourceModule, IDS_WATERMARK_BOX_TITLE, L"Watermark text input box");
    const auto prompt =
        ResourceText<kBoxTextChars>(ResourceModule, IDS_WATERMARK_BOX_PROMPT, L"Input the watermark text");
    ZarnInputBox::Answer answer;
    ZarnInputBox::ShowBox(title.text, prompt.text, ResourceModule, page, answer);
    if (answer.isAccepted && answer.text.text[0] != L'\0' && FindInList(page, answer.text.text) < 0)
    {
        AddToList(page, answer.text.text);
    }
}

void OnDeleteText(HWND page, UIContext& context) noexcept
{
    const LRESULT selected = SendToList(page, CB_GETCURSEL);
    if (selected >= 1 && SendToList(page, CB_DELETESTRING, static_cast<WPARAM>(selected)) == CB_ERR)
    {
        LogVerbose("%s, failed to select: %d.\n", kFunction, LastError());
    }
    SendToList(page, CB_SETCURSEL, kNoWatermarkIndex);
    StoreNoWatermark(context);
    RenewPreview(page, context.watermark);
}

bool Command(HWND page, UIContext& context, WORD control, WORD notification)
{
    if (control == IDC_WATERMARK_TEXT)
    {
        return notification == CBN_SELCHANGE && OnTextSelected(page, context);
    }
    if (notification != BN_CLICKED)
    {
        return false;
    }
    switch (control)
    {
    case IDC_WATERMARK_FONT:
        return OnChooseFont(page, context);
    case IDC_WATERMARK_ADD:
        OnAddText(page);
        return false;
    case IDC_WATERMARK_DELETE:
        OnDeleteText(page, context);
        return true;
    case IDC_WATERMARK_IN_FRONT:
    case IDC_WATERMARK_BEHIND:
        context.watermark.placement = control - uint32_t{IDC_WATERMARK_IN_FRONT};
        return true;
    case IDC_WATERMARK_FIRST_PAGE:
        context.watermark.flag = IsChecked(page, control) ? 1 : 0;
        return true;
    default:
        return false;
    }
}

constexpr PageHandlers kPage = {kFunction, &UIContext::watermarkPage, Open, Command, nullptr};

} // namespace

INT_PTR CALLBACK WatermarkProc(HWND page, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    const WORD control = LOWORD(wParam);
    if (message == WM_COMMAND && (control < IDC_WATERMARK_TEXT || control > IDC_WATERMARK_FIRST_PAGE))
    {
        return FALSE;
    }
    return AnswerPageMessage(kPage, page, message, wParam, lParam);
}

} // namespace tsypr
