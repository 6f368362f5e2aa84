#include "ui/advanced_page.h"
#include "tests/ui/page_fixture.h"

#include <commctrl.h>

namespace tsypr::test
{
namespace
{

class AdvancedPage : public PageTest
{
protected:
    AdvancedPage()
    {
        service.capabilities[DC_COPIES] = Answer(50);
        LoadContext();
        InitCommonControls();
    }

    void OpenPage()
    {
        log.Take();
        Open(IDD_ADVANCED, AdvancedProc);
    }
    // The four buttons of the page, in their order.
    std::string Buttons() const
    {
        return Button(IDC_PRINT_ON_CLIENT) + ", " + Button(IDC_PREVIEW_ON_CLIENT) + ", " + Button(IDC_PRE_DIALOG) +
               ", " + Button(IDC_PRINT_AS_IMAGE);
    }
};

TEST_F(AdvancedPage, OffersAsManyCopiesAsThePrinterMakes)
{
    const std::string none = "error AdvancedProc, failed to get DC_COPIES capability.";
    const std::string closed = "error DrvDeviceCapabilities, failed to open remote printer Office Laser.";
    const std::tuple<bool, int32_t, short, DWORD, const wchar_t*, Messages> cases[] = {
        {true, 50, 7, 0x10032, L"7", {}},
        {true, -1, 1, 0x10001, L"1", {none}},
        {true, 999, 0, 0x103E7, L"1", {}},
        {false, 50, 2, 0x10001, L"2", {closed, none}}};
    for (const auto& [opens, answer, copies, range, text, errors] : cases)
    {
        service.opens = opens;
        service.capabilities[DC_COPIES] = Answer(answer);
        dm->dmCopies = copies;
        OpenPage();
        EXPECT_EQ(static_cast<LRESULT>(range), Send(IDC_COPIES_SPIN, UDM_GETRANGE));
        EXPECT_EQ(text, SpokenName(IDC_COPIES));
        EXPECT_EQ(std::max<int>(copies, 1), context.copies);
        EXPECT_EQ(errors, Lines("error"));
    }
    EXPECT_EQ(3, Send(IDC_COPIES, EM_GETLIMITTEXT));
    EXPECT_EQ(L"Copies:", SpokenName(IDC_COPIES_SPIN));
    EXPECT_EQ(L"Tessary", SpokenName(IDC_LOGO));
    EXPECT_EQ(LogoBitmap, reinterpret_cast<HBITMAP>(Send(IDC_LOGO, STM_GETIMAGE, IMAGE_BITMAP)));
    const std::pair<const char*, int> texts[] = {
        {"1,5", 15}, {"", 0}, {",,7", 7}, {"abc", 0}, {"70000", 4464}, {"-3", -3}};
    for (const auto& [text, copies] : texts)
    {
        s_changes = 0;
        SetDlgItemTextA(dialog, IDC_COPIES, text);
        EXPECT_EQ(1, s_changes) << text;
        EXPECT_EQ(TRUE, Notify(PSN_APPLY));
        EXPECT_EQ(copies, context.copies) << text;
    }
    ExpectPageManners(&UIContext::advancedPage,
                      {IDC_COMPRESSION},
                      {IDC_PRINT_ON_CLIENT, IDC_PREVIEW_ON_CLIENT, IDC_PRE_DIALOG, IDC_PRINT_AS_IMAGE});
}

TEST_F(AdvancedPage, OffersThePrintTarget)
{
    struct Case
    {
        const wchar_t* driver;
        DWORD lock;
        DWORD policy;
        std::optional<DWORD> user;
        uint32_t features;
        uint8_t preDialog;
        const char* buttons; // all but the last
        uint32_t choice;
        bool fails = false;
    };
    const Messages failure = {"error ShowPrintChoice, failed to execute CheckRadioButton: 87 .",
                              "error AdvancedProc, failed to call ShowPrintChoice."};
    constexpr uint32_t kUntouched = 77;
    const Case cases[] = {
        {kOwnDriverName, 0, 0, std::nullopt, kEveryFeature, 0, "on, off, off", 0},
        {kOwnDriverName, 0, 0, std::nullopt, kEveryFeature, 1, "on, off, on", 0},
        {kOwnDriverName, 0, 0, std::nullopt, kFeatureNup, 1, "on, off, x off", 0},
        {kOwnDriverName, 0, 1, std::nullopt, kEveryFeature, 1, "off, on, x off", 1},
        {kOwnDriverName, 0, 1, 0, kEveryFeature, 1, "on, off, on", 0},
        {kOwnDriverName, 0, 0, 9, kEveryFeature, 1, "off, off, off", kUntouched, true}, // there is no such choice
        {kOwnDriverName, 1, 1, 0, kEveryFeature, 0, "x off, x on, x off", 1},
        {kOwnDriverName, 1, 0, 1, kEveryFeature, 0, "x on, x off, x off", 0},
        {kOwnDriverName, 1, 0, 1, kEveryFeature, 1, "x on, x off, on", 0}, // enabled again, as it is meant
        {L"Tessary Universal EMF Driver ", 0, 1, 1, kEveryFeature, 1, "x on, x off, x off", kUntouched},
        {L"tessary universal emf driver", 1, 1, 1, kEveryFeature, 1, "x on, x off, x off", kUntouched},
    };
    for (const Case& one : cases)
    {
        SCOPED_TRACE(&one - cases);
        SetCurrentDriverName(one.driver);
        SetMachine(kPolicyKeyW, L"DisablePrintChoice", one.lock);
        SetMachine(kPolicyKeyW, L"DefaultChoice", one.policy);
        RegDeleteKeyValueW(HKEY_CURRENT_USER, kDriverKeyW, L"DefaultChoice");
        if (one.user)
        {
            SetBytes(HKEY_CURRENT_USER, kDriverKeyW, L"DefaultChoice", REG_DWORD, &*one.user, sizeof(DWORD));
        }
        dm.Private().featureBitmap = one.features;
        dm.Private().isShowPreDlg = one.preDialog;
        dm.Private().printTargetChoice = context.printChoice = kUntouched;
        OpenPage();
        EXPECT_TRUE(Buttons().starts_with(std::string(one.buttons) + ", ")) << Buttons();
        EXPECT_EQ(one.choice, context.printChoice);
        EXPECT_EQ(one.choice, dm.Private().printTargetChoice);
        EXPECT_EQ(one.fails ? failure : Messages{}, Lines("error"));
    }
    OpenPage();
    EXPECT_EQ(Messages{"verbose ShowPrintChoice, print choice is disabled and the default is 1 "
                       "driverName=tessary universal emf driver."},
              Lines("driverName"));
}

TEST_F(AdvancedPage, TakesTheUsersChoices)
{
    dm.Private().isPrintAsImage = 1;
    dm.Private().compression = 2;
    OpenPage();
    EXPECT_EQ("on, off, off, on", Buttons());
    EXPECT_EQ("Lossless Compression|High Quality Compression|>Optimized Compression|No Image", List(IDC_COMPRESSION));
    for (const bool feature : {true, false})
    {
        dm.Private().featureBitmap = feature ? kFeaturePopupPreDlg : 0;
        EnableWindow(Item(IDC_PRE_DIALOG), TRUE);
        SendMessageW(Item(IDC_PRE_DIALOG), BM_SETCHECK, BST_CHECKED, 0);
        EXPECT_TRUE(Command(IDC_PREVIEW_ON_CLIENT));
        EXPECT_EQ(1U, context.printChoice);
        EXPECT_EQ(feature ? "x on" : "on", Button(IDC_PRE_DIALOG)) << "the mark stays";
        EXPECT_TRUE(Command(IDC_PRINT_ON_CLIENT));
        EXPECT_EQ(0U, context.printChoice);
        EXPECT_EQ("on", Button(IDC_PRE_DIALOG));
    }
    EXPECT_TRUE(Command(IDC_PRE_DIALOG));
    EXPECT_EQ(1, context.showPreDialog);
    context.printAsImage = 0;
    EXPECT_TRUE(Command(IDC_PRINT_AS_IMAGE));
    EXPECT_EQ(1, context.printAsImage);
    Choose(IDC_COMPRESSION, 3);
    EXPECT_EQ(3U, context.compression);
    Send(IDC_COMPRESSION, CB_SETCURSEL, 1);
    EXPECT_TRUE(Command(IDC_COMPRESSION, CBN_CLOSEUP));
    EXPECT_EQ(3U, context.compression);
    Send(IDC_PRE_DIALOG, BM_SETCHECK, BST_UNCHECKED);
    Send(IDC_PRINT_AS_IMAGE, BM_SETCHECK, BST_UNCHECKED);
    Notify(PSN_APPLY);
    EXPECT_EQ(0, context.showPreDialog + context.printAsImage);
}

TEST_F(AdvancedPage, KeepsPrivateSettingsOffWhereTheyHaveNoPlace)
{
    dm.Private().isPrintAsImage = 1;
    dm.Private().featureBitmap = 0;
    OpenPage();
    EXPECT_EQ("on, off, x off, x off", Buttons()) << "without the features";
    for (const bool ownDriver : {false, true}) // another driver's printer, and one without a private block
    {
        SetCurrentDriverName(ownDriver ? kOwnDriverName : L"Another Driver");
        dm.Private().signature = ownDriver ? 0 : kPrivateDevModeSignature;
        const Bytes before = dm.Whole();
        OpenPage();
        EXPECT_EQ("x on, x off, x off, x off", Buttons());
        EXPECT_EQ("x ", List(IDC_COMPRESSION));
        EXPECT_EQ(before, dm.Whole());
    }
    dm.Private().signature = kPrivateDevModeSignature;
    dm.Private().compression = 0xFFFFFFFF;
    OpenPage();
    EXPECT_EQ("Lossless Compression|High Quality Compression|Optimized Compression|No Image", List(IDC_COMPRESSION));
}

} // namespace
} // namespace tsypr::test
