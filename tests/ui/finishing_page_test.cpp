#include "ui/finishing_page.h"
#include "tests/ui/page_fixture.h"

namespace tsypr::test
{
namespace
{

class FinishingPage : public PageTest
{
protected:
    void OpenPage()
    {
        Open(IDD_FINISHING, FinishingProc);
    }
};

TEST_F(FinishingPage, OffersStaplesAndHoles)
{
    FinishingCapability capability = {{L"psk:None", L"psk:SaddleStitch", L"ns:Glue"},
                                      {L"psk:LeftEdge", L"psk:TopEdge", L"psk:LeftEdge"}};
    FinishingCapabilities.Store(L"Office Laser", capability);
    dm.Private().staple.Write(L"PSK:SADDLESTITCH"); // another keyword
    OpenPage();
    EXPECT_EQ(">None|Saddle Stitch|ns:Glue", List(IDC_STAPLE));
    EXPECT_EQ("LeftEdge|TopEdge|>LeftEdge", List(IDC_PUNCH)) << "the last of equal keywords wins";
    EXPECT_EQ(0, context.stapleIndex);
    EXPECT_EQ(2, context.punchIndex);
    Choose(IDC_STAPLE, 2);
    Choose(IDC_PUNCH, 1);
    EXPECT_TRUE(Command(IDC_PUNCH, CBN_DROPDOWN));
    ExpectPageManners(&UIContext::finishingPage);
    EXPECT_EQ(2, context.stapleIndex);
    EXPECT_EQ(1, context.punchIndex);
    Choose(IDC_PUNCH, -1);
    EXPECT_EQ(-1, context.punchIndex);

    capability.punches.clear();
    FinishingCapabilities.Store(L"Office Laser", capability);
    dm.Private().staple.Write(L"psk:SaddleStitch");
    OpenPage();
    EXPECT_EQ("None|>Saddle Stitch|ns:Glue", List(IDC_STAPLE));
    EXPECT_EQ("x ", List(IDC_PUNCH));
    EXPECT_EQ(-1, context.punchIndex);
}

TEST_F(FinishingPage, HasNothingToOfferWhereThePrinterHasNot)
{
    FinishingCapabilities.Store(L"Office Laser", {{L"psk:None"}, {L"psk:None"}});
    struct Case
    {
        bool feature;
        const wchar_t* printer;
        Messages messages;
    };
    const Case cases[] = {
        {false,
         L"Office Laser",
         {"verbose PopulateStaple, printer \"Office Laser\" or client version doesn't support finishing",
          "verbose PopulatePunch, printer \"Office Laser\" or client version doesn't support finishing"}},
        {true,
         L"Else",
         {"error PopulateStaple, no Finishing capabilities data for \"Else\".",
          "error PopulatePunch, no Finishing capabilities data for \"Else\"."}},
    };
    for (const Case& one : cases)
    {
        dm.Private().featureBitmap = one.feature ? kEveryFeature : 0;
        wcscpy(context.printerName, one.printer);
        log.Take();
        OpenPage();
        EXPECT_EQ(one.messages, log.Take());
        EXPECT_EQ("x ", List(IDC_STAPLE));
        EXPECT_EQ("x ", List(IDC_PUNCH));
        EXPECT_EQ(std::pair(-1, -1), std::pair(context.stapleIndex, context.punchIndex));
    }
}

} // namespace
} // namespace tsypr::test
