// What a property sheet starts with, and what becomes of it when the user confirms.
#include "tests/printschema/documents.h"
#include "tests/ui/page_fixture.h"
#include "ui/print_caps_thread.h"

namespace tsypr::test
{
namespace
{

constexpr uint32_t kDM2PT = 1, kPT2PC = 2;

class Context : public PageTest
{
protected:
    Context()
    {
        service.ptReplies[kDM2PT].data = BytesOf(Ticket(""));
        service.ptReplies[kPT2PC].data = BytesOf(PrinterOptions());
        dm.Private().staple.Write(L"psk:SaddleStitch");
        dm.Private().punch.Write(L"psk:TopEdge");
        dm.Private().nupLayout.Write(L"psk:TopLeft");
        dm.Private().pagesPerSheet = 16;
    }

    static std::string PrinterOptions()
    {
        return Capabilities(
            Feature("psk:JobNUpAllDocumentsContiguously",
                    PagesOption("1") + PagesOption("16") +
                        Feature("psk:PresentationDirection", Option("psk:RightBottom") + Option("psk:TopLeft"))) +
            Feature("psk:JobStapleAllDocuments",
                    Option("psk:None") + Option("psk:SaddleStitch") + Option("psk:SaddleStitch")) +
            Feature("psk:JobHolePunch", Option("psk:None") + Option("psk:LeftEdge")));
    }
    // Prefetch messages only.
    Messages Initialise()
    {
        context.pagesPerSheet = 99;
        context.nupDirectionIndex = context.stapleIndex = context.punchIndex = 99;
        log.Take();
        service.TakeCalls();
        InitUIContext(&context, dm.Get());
        Messages lines = log.Take();
        std::erase_if(lines, [](const std::string& line) { return line.find(" Init") == std::string::npos; });
        return lines;
    }
    std::vector<int> Indices() const
    {
        return {static_cast<int>(context.pagesPerSheet),
                context.nupDirectionIndex,
                context.stapleIndex,
                context.punchIndex};
    }
    // Each test has a printer of its own, for the maps keep what they know.
    void UsePrinter(const wchar_t* name)
    {
        wcscpy(context.printerName, name);
        dm.Private().printerName.Write(name);
    }
};

TEST_F(Context, LoadsTheFieldsThatAreSet)
{
    dm.Private().featureBitmap = kFeaturePrintAsImage;
    dm.Private().compression = 3;
    dm.Private().printTargetChoice = 1;
    dm.Private().isShowPreDlg = 1;
    dm.Private().isPrintAsImage = 1;
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
    for (const bool set : {true, false})
    {
        dm->dmFields = set ? 0xFFFFFFFF : 0;
        EXPECT_EQ(Messages{}, Initialise());
        EXPECT_EQ(Messages{}, service.TakeCalls());
        const std::vector<int> wanted = set ? std::vector{-7, 256, 1000, 2000, 300, 2, 3, 2, -4, -2, 5}
                                            : std::vector{-7, 9, 0, 0, 1, 1, 1, 1, -4, -2, 1};
        EXPECT_EQ(wanted,
                  (std::vector<int>{context.paperSource,
                                    context.paperSize,
                                    context.customPaperWidth,
                                    context.customPaperLength,
                                    static_cast<int>(context.mediaType),
                                    context.orientation,
                                    context.duplex,
                                    context.color,
                                    context.printQuality,
                                    context.yResolution,
                                    context.copies}));
        EXPECT_EQ(set ? std::wstring(31, L'f') : L"", context.formName);
        EXPECT_EQ((std::vector<uint32_t>{3, 1, 1, 1}),
                  (std::vector<uint32_t>{
                      context.compression, context.printChoice, context.showPreDialog, context.printAsImage}));
        EXPECT_EQ((std::vector{0, 0, 0, 0}), Indices());
    }
    dm->dmFields = DM_PAPERSIZE | DM_PAPERWIDTH;
    Initialise();
    EXPECT_EQ(std::pair(0, 0), std::pair(context.customPaperWidth, context.customPaperLength));
    dm->dmFields = DM_PAPERWIDTH | DM_PAPERLENGTH;
    dm->dmPaperSize = DMPAPER_A4;
    Initialise();
    EXPECT_EQ(std::pair(0, 0), std::pair(context.customPaperWidth, context.customPaperLength));
}

TEST_F(Context, HasAWatermarkOfItsOwnWhereThereIsNone)
{
    WatermarkBlock block = {};
    block.font.lfHeight = 7;
    block.flag = 1;
    std::memcpy(dm.Private().watermark, &block, sizeof(block));
    Initialise();
    EXPECT_STREQ(L"No Watermark", context.watermark.text);
    EXPECT_STREQ(L"Times New Roman", context.watermark.font.lfFaceName);
    EXPECT_EQ((std::vector<LONG>{96, 700, 255, 0, 0}),
              (std::vector<LONG>{context.watermark.font.lfHeight,
                                 context.watermark.font.lfWeight,
                                 static_cast<LONG>(context.watermark.color),
                                 context.watermark.pointSize,
                                 static_cast<LONG>(context.watermark.flag)}));
    std::memset(dm.Private().watermark, 0x5A, kWatermarkBytes);
    Initialise();
    EXPECT_EQ(0, std::memcmp(&context.watermark, dm.Private().watermark, kWatermarkBytes));
}

TEST_F(Context, AsksThePrinterForItsOptions)
{
    const std::string begin = "verbose InitUIContext, Successfully created InitPrintCaps thread";
    const std::string thread = " InitPrintCapsThreadProc, ";
    UsePrinter(L"Asked Laser");
    EXPECT_EQ((Messages{begin,
                        "verbose" + thread + "GetPrintCapsXmlDoc succeed",
                        "verbose" + thread + "GetNupCapability succeed",
                        "verbose" + thread + "GetFinishingCapability succeed"}),
              Initialise());
    EXPECT_EQ((Messages{"open Asked Laser", "query DM2PT", "query PT2PC", "freePT", "freePT", "close"}),
              service.TakeCalls());
    EXPECT_EQ((std::vector{16, 1, 1, 0}), Indices()) << "the first of equal keywords; none of an unknown one";

    // A failed query leaves what is known.
    service.opens = false;
    EXPECT_EQ((Messages{begin, "error" + thread + "GetPrintCapsXmlDoc failed"}), Initialise());
    EXPECT_EQ((std::vector{16, 1, 1, 0}), Indices());
    service.opens = true;
    service.ptReplies[kPT2PC].data = BytesOf(Capabilities(""));
    EXPECT_EQ((Messages{begin,
                        "verbose" + thread + "GetPrintCapsXmlDoc succeed",
                        "error" + thread + "GetNupCapability failed",
                        "error" + thread + "GetFinishingCapability failed"}),
              Initialise());
    EXPECT_EQ((std::vector{16, 1, 1, 0}), Indices());

    // One feature alone; and the name in the device mode is not the context's.
    service.ptReplies[kPT2PC].data = BytesOf(PrinterOptions());
    dm.Private().featureBitmap = kFeatureFinishing;
    EXPECT_EQ((Messages{begin,
                        "verbose" + thread + "GetPrintCapsXmlDoc succeed",
                        "verbose" + thread + "GetFinishingCapability succeed"}),
              Initialise());
    EXPECT_EQ((std::vector{0, 0, 1, 0}), Indices());
    dm.Private().featureBitmap = kEveryFeature;
    wcscpy(context.printerName, L"Another Laser");
    Initialise();
    EXPECT_EQ((std::vector{16, 0, 0, 0}), Indices());
}

TEST_F(Context, GoesOnWithoutAThreadsApartment)
{
    const ComThread apartment; // so that the thread procedure finds COM initialised
    UsePrinter(L"No Apartment");
    EXPECT_EQ(1U, InitPrintCapsThreadProc(dm.Get()));
    EXPECT_EQ(Messages{"error InitPrintCapsThreadProc, COM library is not initialized successfully, ret = 0x1"},
              log.Take());
    EXPECT_FALSE(NupCapabilities.Find(L"No Apartment"));
}

TEST_F(Context, TakesDeviceModesOfAnySize)
{
    for (const WORD size : {WORD{72}, WORD{100}, WORD{188}, WORD{220}})
    {
        for (const WORD extra : {WORD{0}, WORD{900}, WORD{1112}, WORD{1200}})
        {
            DeviceMode odd(size, extra, 0xFF);
            if (PrivateDevMode* block = GetPrivateDevMode(odd.Get()))
            {
                block->featureBitmap = 0;
            }
            const Bytes whole = odd.Whole();
            const GuardedMemory memory(whole.data(), whole.size());
            context.devMode = memory.Get<DEVMODEW>();
            InitUIContext(&context, context.devMode);
            EXPECT_EQ(0, std::memcmp(memory.Get(), whole.data(), whole.size()));
        }
    }
}

TEST_F(Context, TwoSheetsMayBeOpenedAtOnce)
{
    service.notesCalls = false;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            [this]
            {
                DeviceMode mine = dm;
                UIContext own = {};
                wcscpy(own.printerName, L"Shared Laser");
                mine.Private().printerName.Write(L"Shared Laser");
                for (int round = 0; round < 5; ++round)
                {
                    InitUIContext(&own, mine.Get());
                    EXPECT_EQ(1, own.nupDirectionIndex);
                    EXPECT_EQ(1, own.stapleIndex);
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
}

} // namespace
} // namespace tsypr::test
