// What a property sheet starts with.
#include "tests/printschema/documents.h"
#include "tests/watermark/system_calls.h"
#include "tests/ui/page_fixture.h"
#include "ui/print_caps_thread.h"

namespace tsypr::test
{
namespace
{

class Context : public PageTest
{
protected:
    Context()
    {
        service.ptReplies[1].data = BytesOf(Ticket(""));
        service.ptReplies[2].data = BytesOf(PrinterOptions());
        dm.Private().staple.Write(L"psk:SaddleStitch");
        dm.Private().punch.Write(L"psk:TopEdge");
        dm.Private().nupLayout.Write(L"psk:TopLeft");
        dm.Private().pagesPerSheet = 16;
    }

    static std::string PrinterOptions()
    {
        const std::string directions = Option("psk:RightBottom") + Option("psk:TopLeft");
        const std::string staples = Option("psk:None") + Option("psk:SaddleStitch") + Option("psk:SaddleStitch");
        return Capabilities(
            Feature("psk:DocumentNUp", PagesOption("16") + Feature("psk:PresentationDirection", directions)) +
            Feature("psk:JobStapleAllDocuments", staples) +
            Feature("psk:JobHolePunch", Option("psk:None") + Option("psk:LeftEdge")));
    }
    // Gives the messages of the prefetch.
    Messages Initialise()
    {
        context.pagesPerSheet = 99;
        context.nupDirectionIndex = context.stapleIndex = context.punchIndex = 99;
        log.Take();
        service.TakeCalls();
        InitUIContext(&context, dm.Get());
        return Lines(" Init");
    }
    std::string Indices() const
    {
        return Numbers({context.pagesPerSheet, context.nupDirectionIndex, context.stapleIndex, context.punchIndex});
    }
};

TEST_F(Context, LoadsTheFieldsThatAreSet)
{
    PrivateDevMode& block = dm.Private();
    block.featureBitmap = kFeaturePrintAsImage;
    block.compression = 3;
    block.printTargetChoice = block.isShowPreDlg = block.isPrintAsImage = 1;
    dm->dmDefaultSource = -7;
    dm->dmPaperSize = DMPAPER_USER;
    dm->dmPaperWidth = 1000;
    dm->dmPaperLength = 2000;
    dm->dmMediaType = 300;
    dm->dmOrientation = DMORIENT_LANDSCAPE;
    dm->dmDuplex = DMDUP_HORIZONTAL;
    dm->dmColor = DMCOLOR_COLOR;
    dm->dmPrintQuality = DMRES_HIGH;
    dm->dmYResolution = -2;
    dm->dmCopies = 5;
    std::fill_n(dm->dmFormName, 32, L'f');
    const std::pair<DWORD, const char*> cases[] = {{0xFFFFFFFF, "-7 256 1000 2000 300 2 3 2 -4 -2 5"},
                                                   {DM_PAPERSIZE | DM_PAPERWIDTH, "-7 256 0 0 1 1 1 1 -4 -2 1"},
                                                   {0, "-7 9 0 0 1 1 1 1 -4 -2 1"}};
    for (const auto& [fields, values] : cases)
    {
        dm->dmFields = fields;
        EXPECT_EQ(Messages{}, Initialise());
        EXPECT_EQ(Messages{}, service.TakeCalls());
        EXPECT_EQ(values,
                  Numbers({context.paperSource,
                           context.paperSize,
                           context.customPaperWidth,
                           context.customPaperLength,
                           context.mediaType,
                           context.orientation,
                           context.duplex,
                           context.color,
                           context.printQuality,
                           context.yResolution,
                           context.copies}));
        EXPECT_EQ((fields & DM_FORMNAME) != 0 ? std::wstring(31, L'f') : L"", context.formName);
        EXPECT_EQ("3 1 1 1",
                  Numbers({context.compression, context.printChoice, context.showPreDialog, context.printAsImage}));
        EXPECT_EQ("0 0 0 0", Indices());
    }
}

TEST_F(Context, HasAWatermarkOfItsOwnWhereThereIsNone)
{
    dm.Private().watermark[0] = 7;
    Initialise();
    const WatermarkBlock& watermark = context.watermark;
    EXPECT_STREQ(L"No Watermark", watermark.text);
    EXPECT_STREQ(L"Times New Roman", watermark.font.lfFaceName);
    EXPECT_EQ("96 700 255 0",
              Numbers({watermark.font.lfHeight, watermark.font.lfWeight, watermark.color, watermark.pointSize}));
    std::memset(dm.Private().watermark, 0x5A, kWatermarkBytes);
    Initialise();
    EXPECT_EQ(0, std::memcmp(&watermark, dm.Private().watermark, kWatermarkBytes));
}

TEST_F(Context, AsksThePrinterForItsOptions)
{
    const std::string begin = "verbose InitUIContext, Successfully created InitPrintCaps thread";
    const std::string good = "verbose InitPrintCapsThreadProc, ";
    const std::string bad = "error InitPrintCapsThreadProc, ";
    const Messages first = {begin, good + "GetPrintCapsXmlDoc succeed"};
    EXPECT_EQ((Messages{begin, first[1], good + "GetNupCapability succeed", good + "GetFinishingCapability succeed"}),
              Initialise());
    EXPECT_EQ((Messages{"open Office Laser", "query DM2PT", "query PT2PC", "freePT", "freePT", "close"}),
              service.TakeCalls());
    EXPECT_EQ("16 1 1 0", Indices()) << "the first of equal keywords; none of an unknown one";

    // A failed query leaves what is known.
    service.opens = false;
    EXPECT_EQ((Messages{begin, bad + "GetPrintCapsXmlDoc failed"}), Initialise());
    service.opens = true;
    service.ptReplies[2].data = BytesOf(Capabilities(""));
    EXPECT_EQ((Messages{begin, first[1], bad + "GetNupCapability failed", bad + "GetFinishingCapability failed"}),
              Initialise());
    EXPECT_EQ("16 1 1 0", Indices());

    FailCall("CreateThread");
    EXPECT_EQ(Messages{"error InitUIContext, Failed to create InitPrintCaps thread"}, Initialise());
    EXPECT_EQ("16 1 1 0", Indices());

    // One feature alone; and the name in the device mode is not the context's.
    service.ptReplies[2].data = BytesOf(PrinterOptions());
    dm.Private().featureBitmap = kFeatureFinishing;
    EXPECT_EQ((Messages{begin, first[1], good + "GetFinishingCapability succeed"}), Initialise());
    EXPECT_EQ("0 0 1 0", Indices());
    dm.Private().featureBitmap = kEveryFeature;
    wcscpy(context.printerName, L"Another Laser");
    Initialise();
    EXPECT_EQ("16 0 0 0", Indices());
    const ComThread apartment; // so that the thread procedure finds COM initialised
    EXPECT_EQ(1U, InitPrintCapsThreadProc(dm.Get()));
    EXPECT_EQ(Messages{bad + "COM library is not initialized successfully, ret = 0x1"}, log.Take());
}

TEST_F(Context, TakesDeviceModesOfAnySize)
{
    for (const int size : {72, 100, 188, 220})
    {
        for (const int extra : {0, 900, 1112, 1200})
        {
            DeviceMode odd(static_cast<WORD>(size), static_cast<WORD>(extra), 0xFF);
            if (PrivateDevMode* block = GetPrivateDevMode(odd.Get()))
            {
                block->featureBitmap = 0;
            }
            const Bytes whole = odd.Whole();
            const GuardedMemory memory(whole.data(), whole.size());
            InitUIContext(&context, memory.Get<DEVMODEW>());
            EXPECT_EQ(0, std::memcmp(memory.Get(), whole.data(), whole.size()));
        }
    }
}

} // namespace
} // namespace tsypr::test
