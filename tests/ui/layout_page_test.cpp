#include "ui/layout_page.h"
#include "tests/ui/page_fixture.h"

namespace tsypr::test
{
namespace
{

class LayoutPage : public PageTest
{
protected:
    LayoutPage()
    {
        service.capabilities[DC_ORIENTATION] = Answer(90);
        service.capabilities[DC_DUPLEX] = Answer(1);
        NupCapabilities.Store(L"Office Laser", {{L"1", L"2", L"4", L"16"}, {L"psk:RightBottom", L"psk:TopLeft"}});
        dm.Private().pagesPerSheet = 4;
        dm.Private().nupLayout.Write(L"psk:TopLeft");
        LoadContext();
    }

    void OpenPage()
    {
        Open(IDD_LAYOUT, LayoutProc);
    }
    HBITMAP Picture() const
    {
        return reinterpret_cast<HBITMAP>(Send(IDC_ORIENTATION_PICTURE, STM_GETIMAGE, IMAGE_BITMAP));
    }
};

TEST_F(LayoutPage, OffersOrientation)
{
    const std::tuple<std::optional<int32_t>, short, const char*, HBITMAP> cases[] = {
        {90, DMORIENT_PORTRAIT, ">Portrait|Landscape", PortraitBitmap},
        {270, DMORIENT_LANDSCAPE, "Portrait|>Landscape", LandscapeBitmap},
        {std::nullopt, 0, "Portrait|>Landscape", LandscapeBitmap},
        {0, DMORIENT_LANDSCAPE, "x >Portrait", nullptr}};
    for (const auto& [answer, orientation, list, picture] : cases)
    {
        service.capabilities[DC_ORIENTATION] = {answer, std::nullopt};
        dm->dmFields = 0; // does not count
        dm->dmOrientation = orientation;
        OpenPage();
        EXPECT_EQ(list, List(IDC_ORIENTATION));
        EXPECT_EQ(picture, Picture());
    }
    OpenPage();
    service.opens = false;
    log.Take();
    OpenPage();
    EXPECT_EQ(Messages(2, "error DrvDeviceCapabilities, failed to open remote printer Office Laser."), Lines("error"));
    EXPECT_EQ("Portrait|>Landscape", List(IDC_ORIENTATION));
    for (const int position : {0, 1, -1})
    {
        Choose(IDC_ORIENTATION, position);
        EXPECT_EQ(position == 0 ? DMORIENT_PORTRAIT : DMORIENT_LANDSCAPE, context.orientation);
        EXPECT_EQ(position == 0 ? PortraitBitmap : LandscapeBitmap, Picture());
        EXPECT_EQ(position == 0 ? L"Portrait" : L"Landscape", SpokenName(IDC_ORIENTATION_PICTURE));
    }
}

TEST_F(LayoutPage, OffersBothSides)
{
    const std::tuple<DWORD, uint32_t, int32_t, short, const char*> cases[] = {
        {DM_DUPLEX, kLockedDuplex, 1, 3, "x >Flip On Short Edge"},
        {DM_DUPLEX, kLockedDuplex, 1, 9, "x "},
        {0, kLockedDuplex, 1, 2, "None|>Flip On Long Edge|Flip On Short Edge"},
        {DM_DUPLEX, 0, 0, 2, "x >None|Flip On Long Edge|Flip On Short Edge"},
        {DM_DUPLEX, 0, -1, 9, "None|Flip On Long Edge|>Flip On Short Edge"},
        {DM_DUPLEX, 0, 1, 1, ">None|Flip On Long Edge|Flip On Short Edge"}};
    for (const auto& [fields, locked, answer, duplex, list] : cases)
    {
        dm->dmFields = fields;
        dm->dmDuplex = duplex;
        dm.Private().lockedSettings = locked;
        service.capabilities[DC_DUPLEX] = Answer(answer);
        OpenPage();
        EXPECT_EQ(list, List(IDC_DUPLEX));
    }
    for (const auto& [position, duplex] : {std::pair(2, 3), {1, 2}, {0, 1}, {-1, 3}})
    {
        Choose(IDC_DUPLEX, position);
        EXPECT_EQ(duplex, context.duplex);
    }
}

TEST_F(LayoutPage, OffersSeveralPagesOnASheet)
{
    OpenPage();
    EXPECT_EQ("1|2|>4|16", List(IDC_PAGES_PER_SHEET));
    EXPECT_EQ("Right then Down|>Up then Left", List(IDC_PAGE_ORDER));
    EXPECT_EQ(4U, context.pagesPerSheet);
    EXPECT_EQ(1, context.nupDirectionIndex);
    Choose(IDC_PAGE_ORDER, 0);
    Choose(IDC_PAGES_PER_SHEET, 3);
    EXPECT_EQ(0, context.nupDirectionIndex);
    EXPECT_EQ(4U, context.pagesPerSheet) << "is read on applying only";
    ExpectPageManners(&UIContext::layoutPage, {IDC_ORIENTATION, IDC_DUPLEX, IDC_PAGES_PER_SHEET, IDC_PAGE_ORDER});
    EXPECT_EQ(16U, context.pagesPerSheet);
    Choose(IDC_PAGE_ORDER, -1);
    EXPECT_EQ(-1, context.nupDirectionIndex);

    // The last of equal entries wins, an unknown keyword is its own text, and three characters of a number count.
    NupCapabilities.Store(L"Office Laser", {{L"4", L"2048", L"4"}, {L"ns:Odd", L"psk:TopLeft", L"psk:TopLeft"}});
    OpenPage();
    EXPECT_EQ("4|2048|>4", List(IDC_PAGES_PER_SHEET));
    EXPECT_EQ("ns:Odd|Up then Left|>Up then Left", List(IDC_PAGE_ORDER));
    Choose(IDC_PAGES_PER_SHEET, 1);
    Notify(PSN_APPLY);
    EXPECT_EQ(204U, context.pagesPerSheet);

    NupCapabilities.Store(L"Office Laser", {std::vector<std::wstring>(2000, L"4"), {L"psk:RightBottom"}});
    OpenPage();
    EXPECT_EQ("2000 1999", Numbers({Send(IDC_PAGES_PER_SHEET, CB_GETCOUNT), Send(IDC_PAGES_PER_SHEET, CB_GETCURSEL)}));
    EXPECT_EQ(">Right then Down", List(IDC_PAGE_ORDER));
}

TEST_F(LayoutPage, HasNothingToOfferWhereThePrinterHasNot)
{
    const std::string unsupported = "PopulateNup, printer \"Office Laser\" or client version doesn't support N-up";
    const std::tuple<bool, const wchar_t*, NupCapability, const char*, const char*, Messages, uint32_t> cases[] = {
        {false, L"Office Laser", {}, "x ", "x ", {"verbose " + unsupported}, 1},
        {true, L"Else", {}, "x ", "x ", {"error PopulateNup, no Nup capabilities data for \"Else\"."}, 1},
        {true, L"Office Laser", {{}, {L"psk:TopLeft"}}, "x ", "x ", {}, 1},
        {true, L"Office Laser", {{L"2", L"8"}, {}}, ">2|8", "x ", {}, 2},
    };
    for (const auto& [feature, printer, capability, pages, order, message, applied] : cases)
    {
        dm.Private().featureBitmap = feature ? kEveryFeature : 0;
        NupCapabilities.Store(L"Office Laser", capability);
        wcscpy(context.printerName, printer);
        log.Take();
        OpenPage();
        EXPECT_EQ(pages, List(IDC_PAGES_PER_SHEET));
        EXPECT_EQ(order, List(IDC_PAGE_ORDER));
        EXPECT_EQ(-1, context.nupDirectionIndex);
        EXPECT_EQ(message, Lines("Nup, "));
        Notify(PSN_APPLY);
        EXPECT_EQ(applied, context.pagesPerSheet);
    }
}

} // namespace
} // namespace tsypr::test
