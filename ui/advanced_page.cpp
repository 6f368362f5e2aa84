#include "ui/advanced_page.h"

#include "language/resource_ids.h"
#include "lib/string/format.h"
#include "module/interface_dll.h"
#include "module/log.h"
#include "module/reg_utils.h"
#include "module/registry_keys.h"
#include "remote/devmode_header_keeper.h"
#include "remote/driver_exports.h"
#include "ui/driver_name.h"
#include "ui/page_controls.h"
#include "ui/page_texts.h"
#include "ui/property_page.h"

#include <commctrl.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace tsypr
{
namespace
{

constexpr char kFunction[] = "AdvancedProc";

// In the order of the values.
constexpr PageText kCompressionTexts[] = {{IDS_COMPRESSION_LOSSLESS, L"Lossless Compression"},
                                          {IDS_COMPRESSION_QUALITY, L"High Quality Compression"},
                                          {IDS_COMPRESSION_OPTIMIZED, L"Optimized Compression"},
                                          {IDS_COMPRESSION_NO_IMAGE, L"No Image"}};

constexpr DWORD kPrintOnClient = 0; // the print choice; the only other one is 1

bool HasFeature(const UIContext& context, uint32_t feature) noexcept
{
    const PrivateDevMode* block = GetPrivateDevMode(context.devMode);
    return block != nullptr && (block->featureBitmap & feature) != 0;
}

// The message about a failed call names the export that makes it, on purpose.
DWORD MaximumCopies(UIContext& context) noexcept
{
    const DWORD maximum = DrvDeviceCapabilities(nullptr, context.printerName, DC_COPIES, nullptr, context.devMode);
    if (maximum == GDI_ERROR)
    {
        LogError("%s, failed to get DC_COPIES capability.\n", kFunction);
        return 1;
    }
    return maximum;
}

struct PrintChoicePolicy
{
    DWORD locked = 0; // the user may not choose
    DWORD choice = 0;
};

PrintChoicePolicy ReadPrintChoice() noexcept
{
    PrintChoicePolicy policy;
    RegUtils::ReadGPODwordValue("DisablePrintChoice", 0, &policy.locked);
    RegUtils::ReadGPODwordValue("DefaultChoice", 0, &policy.choice);
    if (policy.locked == 0)
    {
        RegUtils::ReadDwordValue(HKEY_CURRENT_USER, kDriverKey, "DefaultChoice", policy.choice, &policy.choice);
    }
    return policy;
}

void StorePrintChoice(UIContext& context, DWORD choice) noexcept
{
    context.printChoice = choice;
    if (PrivateDevMode* block = GetPrivateDevMode(context.devMode))
    {
        const DevModeHeaderKeeper keeper(context.devMode);
        block->printTargetChoice = choice;
    }
}

// The order of the steps is meant: with the choice locked, on the client and with the dialog wanted, the check box of
// the dialog ends up enabled.
void ShowPreDialog(HWND dialog, const UIContext& context, DWORD choice) noexcept
{
    const PrivateDevMode* block = GetPrivateDevMode(context.devMode);
    if (choice == kPrintOnClient && block != nullptr && block->isShowPreDlg != 0)
    {
        EnableControl(dialog, IDC_PRE_DIALOG, true);
        SetChecked(dialog, IDC_PRE_DIALOG, true);
    }
    if (choice != kPrintOnClient)
    {
        EnableControl(dialog, IDC_PRE_DIALOG, false);
    }
    if (!HasFeature(context, kFeaturePopupPreDlg))
    {
        EnableControl(dialog, IDC_PRE_DIALOG, false);
        SetChecked(dialog, IDC_PRE_DIALOG, false);
    }
}

bool ShowPrintChoice(HWND dialog, UIContext& context) noexcept
{
    const PrintChoicePolicy policy = ReadPrintChoice();
    // Without a private block the choice has no place to go to.
    const bool offered = IsOwnDriver() && GetPrivateDevMode(context.devMode) != nullptr;
    if (policy.locked != 0 || !offered)
    {
        for (const int control : {IDC_PRINT_ON_CLIENT, IDC_PREVIEW_ON_CLIENT, IDC_PRE_DIALOG})
        {
            EnableControl(dialog, control, false);
        }
    }
    if (!offered)
    {
        LogVerbose("%s, print choice is disabled and the default is %d driverName=%S.\n",
                   "ShowPrintChoice",
                   static_cast<int>(policy.choice),
                   CurrentDriverName().text);
        CheckChoice(dialog, IDC_PRINT_ON_CLIENT, IDC_PREVIEW_ON_CLIENT, kPrintOnClient);
        SetChecked(dialog, IDC_PRE_DIALOG, false);
        return true;
    }
    if (!CheckChoice(dialog, IDC_PRINT_ON_CLIENT, IDC_PREVIEW_ON_CLIENT, policy.choice))
    {
        LogError("%s, failed to execute CheckRadioButton: %d .\n", "ShowPrintChoice", static_cast<int>(GetLastError()));
        return false;
    }
    ShowPreDialog(dialog, context, policy.choice);
    StorePrintChoice(context, policy.choice);
    return true;
}

void FillCompression(HWND dialog, const UIContext& context) noexcept
{
    const DropDownList list(dialog, IDC_COMPRESSION);
    const PrivateDevMode* block = GetPrivateDevMode(context.devMode);
    if (!IsOwnDriver() || block == nullptr)
    {
        list.Disable();
        return;
    }
    list.Enable();
    list.Clear();
    for (const PageText& text : kCompressionTexts)
    {
        list.Add(LoadPageText(text).text);
    }
    list.Select(block->compression);
}

void ShowCopies(HWND dialog, UIContext& context) noexcept
{
    context.copies = std::max<int16_t>(DevModeField(context.devMode, &DEVMODEW::dmCopies), 1);
    char text[8];
    FormatFixed(text, sizeof(text), "%d", context.copies);
    SetDlgItemTextA(dialog, IDC_COPIES, text);
}

void ShowPrintAsImage(HWND dialog, const UIContext& context) noexcept
{
    const PrivateDevMode* block = GetPrivateDevMode(context.devMode);
    if (IsOwnDriver() && block != nullptr)
    {
        if (block->isPrintAsImage != 0)
        {
            SetChecked(dialog, IDC_PRINT_AS_IMAGE, true);
        }
        if (HasFeature(context, kFeaturePrintAsImage))
        {
            return;
        }
    }
    SetChecked(dialog, IDC_PRINT_AS_IMAGE, false);
    EnableControl(dialog, IDC_PRINT_AS_IMAGE, false);
}

void Open(HWND dialog, const PROPSHEETPAGEW& page)
{
    const DWORD maximumCopies = MaximumCopies(ContextOf(page));
    UIContext& context = KeepPage(dialog, page);
    if (!ShowPrintChoice(dialog, context))
    {
        LogError("%s, failed to call ShowPrintChoice.\n", kFunction);
    }
    FillCompression(dialog, context);
    SendDlgItemMessageW(dialog, IDC_COPIES_SPIN, UDM_SETRANGE, 0, MAKELPARAM(maximumCopies, 1));
    SendDlgItemMessageW(dialog, IDC_COPIES, EM_LIMITTEXT, 3, 0);
    ShowPicture(dialog, IDC_LOGO, LogoBitmap);
    NameControl(dialog, IDC_LOGO, L"Tessary");
    NameByLabel(dialog, IDC_COPIES_SPIN);
    ShowCopies(dialog, context);
    ShowPrintAsImage(dialog, context);
}

void ChoosePrintTarget(HWND dialog, UIContext& context, DWORD choice) noexcept
{
    context.printChoice = choice;
    if (HasFeature(context, kFeaturePopupPreDlg))
    {
        EnableControl(dialog, IDC_PRE_DIALOG, choice == kPrintOnClient); // the check mark stays
    }
}

// The up-down control may have put commas between thousands. There is no check of the range.
int16_t CopiesIn(HWND dialog) noexcept
{
    char text[16] = {};
    GetDlgItemTextA(dialog, IDC_COPIES, text, static_cast<int>(std::size(text)));
    *std::remove(std::begin(text), std::begin(text) + std::strlen(text), ',') = '\0';
    return static_cast<int16_t>(std::strtol(text, nullptr, 10));
}

bool ChooseCompression(HWND dialog, UIContext& context, WORD notification) noexcept
{
    const int32_t position = DropDownList(dialog, IDC_COMPRESSION).Position();
    if (notification != CBN_SELCHANGE || position < 0)
    {
        return false;
    }
    context.compression = static_cast<uint32_t>(position);
    return true;
}

bool Command(HWND dialog, UIContext& context, WORD control, WORD notification)
{
    switch (control)
    {
    case IDC_PRINT_ON_CLIENT:
    case IDC_PREVIEW_ON_CLIENT:
        ChoosePrintTarget(dialog, context, control - DWORD{IDC_PRINT_ON_CLIENT});
        return true;
    case IDC_COMPRESSION:
        return ChooseCompression(dialog, context, notification);
    case IDC_PRE_DIALOG:
        context.showPreDialog = IsChecked(dialog, control) ? 1 : 0;
        return true;
    case IDC_PRINT_AS_IMAGE:
        context.printAsImage = IsChecked(dialog, control) ? 1 : 0;
        return true;
    case IDC_COPIES: // whose number is read when the user confirms
        return notification == EN_CHANGE && CopiesIn(dialog) != context.copies;
    default:
        return false;
    }
}

void ReadControls(HWND dialog, UIContext& context)
{
    context.copies = CopiesIn(dialog);
    context.showPreDialog = IsChecked(dialog, IDC_PRE_DIALOG) ? 1 : 0;
    context.printAsImage = IsChecked(dialog, IDC_PRINT_AS_IMAGE) ? 1 : 0;
}

constexpr PageHandlers kPage = {kFunction, &UIContext::advancedPage, Open, Command, ReadControls};

} // namespace

INT_PTR CALLBACK AdvancedProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    return AnswerPageMessage(kPage, dialog, message, wParam, lParam);
}

} // namespace tsypr
