#include "ui/finishing_page.h"
#include "tests/ui/page_fixture.h"

namespace tsypr::test
{
namespace
{

class FinishingPage : public PageTest
{
protected:
    std::string Lists() const
    {
        return List(IDC_STAPLE) + ", " + List(IDC_PUNCH);
    }
    std::string Indices() const
    {
        return Numbers({context.stapleIndex, context.punchIndex});
    }
};

TEST_F(FinishingPage, OffersStaplesAndHoles)
{
    FinishingCapability capability = {{L"psk:None", L"psk:SaddleStitch", L"ns:Glue"},
                                      {L"psk:LeftEdge", L"psk:TopEdge", L"psk:LeftEdge"}};
    FinishingCapabilities.Store(L"Office Laser", capability);
    dm.Private().staple.Write(L"PSK:SADDLESTITCH"); // another keyword
    Open(IDD_FINISHING, FinishingProc);
    EXPECT_EQ(">None|Saddle Stitch|ns:Glue, LeftEdge|TopEdge|>LeftEdge", Lists()) << "the last of equal keywords wins";
    EXPECT_EQ("0 2", Indices());
    Choose(IDC_STAPLE, 2);
    Choose(IDC_PUNCH, 1);
    ExpectPageManners(&UIContext::finishingPage, {IDC_STAPLE, IDC_PUNCH});
    EXPECT_EQ("2 1", Indices());
    Choose(IDC_PUNCH, -1);
    EXPECT_EQ("2 -1", Indices());

    capability.punches.clear();
    FinishingCapabilities.Store(L"Office Laser", capability);
    dm.Private().staple.Write(L"psk:SaddleStitch");
    Open(IDD_FINISHING, FinishingProc);
    EXPECT_EQ("None|>Saddle Stitch|ns:Glue, x ", Lists());
    EXPECT_EQ("1 -1", Indices());
    FinishingCapabilities.Store(L"Office Laser", {{}, std::vector<std::wstring>(2000, L"psk:None")});
    Open(IDD_FINISHING, FinishingProc);
    EXPECT_EQ("-1 0", Indices());
    EXPECT_EQ(2000, Send(IDC_PUNCH, CB_GETCOUNT));
}

TEST_F(FinishingPage, HasNothingToOfferWhereThePrinterHasNot)
{
    FinishingCapabilities.Store(L"Office Laser", {{L"psk:None"}, {L"psk:None"}});
    const std::string unsupported = ", printer \"Office Laser\" or client version doesn't support finishing";
    const std::string unknown = ", no Finishing capabilities data for \"Else\".";
    for (const bool feature : {false, true})
    {
        dm.Private().featureBitmap = feature ? kEveryFeature : 0;
        wcscpy(context.printerName, feature ? L"Else" : L"Office Laser");
        log.Take();
        Open(IDD_FINISHING, FinishingProc);
        const std::string begin = feature ? "error Populate" : "verbose Populate";
        const std::string& end = feature ? unknown : unsupported;
        EXPECT_EQ((Messages{begin + "Staple" + end, begin + "Punch" + end}), log.Take());
        EXPECT_EQ("x , x ", Lists());
        EXPECT_EQ("-1 -1", Indices());
    }
}

} // namespace
} // namespace tsypr::test
