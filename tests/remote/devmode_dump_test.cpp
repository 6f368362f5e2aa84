#include "remote/devmode_dump.h"
#include "remote/devmode_names.h"
#include "remote/name_buffers.h"
#include "tests/remote/device_mode_builder.h"
#include "tests/remote/log_capture.h"

#include <gtest/gtest.h>

#include <thread>

namespace tsypr::test
{
namespace
{

using namespace PrintUtils;

constexpr char kLead[] = "verbose    pDevMode.";

// The dump without what every line begins with, as one text.
std::string Dump(LogCapture& log, DeviceMode& dm)
{
    log.Take();
    DumpDevMode(dm.Get(), nullptr);
    std::string text;
    for (const std::string& line : log.Take())
    {
        EXPECT_TRUE(line.starts_with(kLead)) << line;
        text += (text.empty() ? "" : "; ") + line.substr(std::size(kLead) - 1);
    }
    return text;
}

TEST(DevModeDump, WritesEveryFieldInOrder)
{
    const std::string publicLines =
        "dmDeviceName = \"Office Laser\"; dmSpecVersion = 0x401; dmSize = 220; dmDriverExtra = 1112; dmFields = "
        "ORIENTATION, PAPERSIZE, COLOR; dmOrientation = PORTRAIT (set); dmPaperSize = A4 (set); dmPaperLength = 0; "
        "dmPaperWidth = 0; dmScale = 0; dmCopies = 0; dmDefaultSource = 0; dmPrintQuality = 0; dmColor = MONOCHROME "
        "(set); dmDuplex = 0; dmYResolution = 0; dmTTOption = 0; dmCollate = FALSE; dmFormName = \"A4\"; dmNup = 0; "
        "dmICMMethod = 0; dmICMIntent = 0; dmMediaType = 0";
    LogCapture log;
    DeviceMode dm = ClientDeviceMode();
    EXPECT_EQ(publicLines + "; compression(hidden) = 1; printTargetChoice(hidden) = 2; isPrintAsImage(hidden) = 0; "
                            "isShowPreDlg(hidden) = 0; pagesPerSheet(hidden) = 4; nupLayout(hidden) = psk:RightBottom; "
                            "staple(hidden) = psk:None; punch(hidden) = psk:LeftEdge; featureBitmap(hidden) = ; "
                            "lockedSettings(hidden) = ",
              Dump(log, dm));
    DumpDevMode(dm.Get(), L"a title:");
    EXPECT_EQ("verbose PrintUtils::DumpDevMode(): a title:", log.Take().front());
    DumpDevMode(nullptr, L"a title:");
    EXPECT_EQ(Messages{}, log.Take());
    dm.Private().signature ^= 1;
    EXPECT_EQ(publicLines, Dump(log, dm));
    dm->dmDriverExtra = 892; // 1112 bytes in total
    EXPECT_EQ(publicLines.size() - 1, Dump(log, dm).size());
}

TEST(DevModeDump, EveryFieldSaysWhetherItIsSet)
{
    LogCapture log;
    DeviceMode dm(220, 0);
    dm->dmFields = 0xFFFFFFFF;
    dm->dmPosition = {-5, 7};
    dm->dmOrientation = 9; // these share memory with the position, display orientation and fixed output
    dm->dmCopies = 2;
    dm->dmPrintQuality = 600;
    dm->dmLogPixels = 96;
    dm->dmBitsPerPel = 24;
    dm->dmPelsWidth = 640;
    dm->dmPelsHeight = 480;
    dm->dmDisplayFlags = 0x16;
    dm->dmDisplayFrequency = 60;
    dm->dmDitherType = DMDITHER_LINEART;
    dm->dmPanningWidth = 11;
    dm->dmPanningHeight = 12;
    dm->dmReserved1 = 255;
    dm->dmReserved2 = 0xFFFFFFFF;
    const std::string text = Dump(log, dm);
    const size_t display = text.find("dmPosition");
    const std::string printing = text.substr(text.find("dmOrientation"), display - text.find("dmOrientation"));
    EXPECT_EQ(std::count(printing.begin(), printing.end(), ';'), 18);
    EXPECT_EQ(std::count(printing.begin(), printing.end(), '('), 18) << printing;
    EXPECT_NE(printing.find("; dmPrintQuality = 600 (set); "), printing.npos) << printing;
    EXPECT_EQ("dmPosition = -65527,7 (set); dmDisplayOrientation = 131072 (set); dmDisplayFixedOutput = 39321600 "
              "(set); dmLogPixels = 96 (set); dmBitsPerPel = 24 (set); dmPelsWidth = 640 (set); dmPelsHeight = 480 "
              "(set); dmDisplayFlags = INTERLACED, TEXTMODE, 0x10 (set); dmDisplayFrequency = 60 (set); "
              "dmDitherType = LINEART (set); dmPanningWidth = 11 (set); dmPanningHeight = 12 (set); dmReserved1 = "
              "255(0xff); dmReserved2 = -1(0xffffffff)",
              text.substr(display));
}

TEST(DevModeDump, EndsTheKeywordsWhateverTheLogLevel)
{
    for (const char* level : {"info", "verbose"})
    {
        LogCapture log(level);
        DeviceMode dm = ClientDeviceMode();
        PrivateDevMode& block = dm.Private();
        Fill(block.nupLayout, L'k');
        Fill(block.staple, L'k');
        Fill(block.punch, L'k');
        DeviceMode expected = dm;
        expected.Private().nupLayout.Terminate();
        expected.Private().staple.Terminate();
        expected.Private().punch.Terminate();
        DumpDevMode(dm.Get(), L"title");
        EXPECT_EQ(expected.Whole(), dm.Whole());
        const Messages lines = log.Take();
        const std::string cut = kLead + ("nupLayout(hidden) = " + std::string(29, 'k'));
        EXPECT_EQ(std::string(level) == "info" ? 0 : 1, std::count(lines.begin(), lines.end(), cut));
        block.nupLayout.Write(std::wstring(40, L'x').c_str());
        EXPECT_EQ(std::wstring(29, L'x'), Text(block.nupLayout));
        EXPECT_EQ(std::wstring(29, L'k'), Text(block.staple));
    }
}

TEST(DevModeNames, OfValuesOrElseTheNumberInABufferPerFunction)
{
    EXPECT_EQ("LANDSCAPE LEDGER 10X14 ISO_B4 PENV_10_ROTATED FORMSOURCE HIGH VERTICAL DOWNLOAD_OUTLINE SYSTEM "
              "ABS_COLORIMETRIC GRAYSCALE DEFAULT",
              Words() << OrientationName(2) << PaperSizeName(4) << PaperSizeName(16) << PaperSizeName(DMPAPER_ISO_B4)
                      << PaperSizeName(DMPAPER_PENV_10_ROTATED) << SourceName(15) << PrintQualityName(-4)
                      << DuplexName(2) << TTOptionName(4) << NupName(1) << ICMIntentName(4) << DitherTypeName(10)
                      << DisplayOrientationName(0));
    EXPECT_EQ("4294967295 0 300 600 3 4 5 6 7 8 9 4294967295 11 12 13",
              Words() << OrientationName(-1) << PaperSizeName(0) << SourceName(300) << PrintQualityName(600)
                      << ColorName(3) << DuplexName(4) << TTOptionName(5) << CollateName(6) << NupName(7)
                      << ICMMethodName(8) << ICMIntentName(9) << MediaTypeName(0xFFFFFFFF) << DitherTypeName(11)
                      << DisplayFixedOutputName(12) << DisplayOrientationName(13));
    const char* mine = SourceName(300);
    PaperSizeName(302);
    std::thread([] { EXPECT_STREQ("301", SourceName(301)); }).join();
    EXPECT_STREQ("300", mine);
    ReleaseNameBuffers();
    EXPECT_STREQ("302", SourceName(302));
}

TEST(DevModeNames, OfFlagsInAscendingOrderWithTheRestInHexadecimal)
{
    EXPECT_EQ("NUP, PRINT_AS_IMAGE, POPUP_PRE_DLG, COMPRESSION_ZLIB, FINISHING Duplex, Color, CompressionLevel, 0xf0 "
              "GRAYSCALE, INTERLACED, TEXTMODE 0x20 ",
              Words() << FeatureNames(0x1F) << LockedNames(0xF7) << DisplayFlagsNames(7) << FeatureNames(0x20)
                      << LockedNames(0));
    EXPECT_STREQ("ORIENTATION, PAPERSIZE, PAPERLENGTH, PAPERWIDTH, SCALE, POSITION, DISPLAYORIENTATION, COPIES, "
                 "DEFAULTSOURCE, PRINTQUALITY, COLOR, DUPLEX, YRESOLUTION, TTOPTION, COLLATE, FORMNAME, LOGPIXELS, "
                 "BITSPERPEL, PELSWIDTH, PELSHEIGHT, DISPLAYFLAGS, DISPLAYFREQUENCY, ICMMETHOD, ICMINTENT, MEDIATYPE, "
                 "DITHERTYPE, PANNINGWIDTH, PANNINGHEIGHT, DISPLAYFIXEDOUTPUT, 0xc0000040",
                 FieldsNames(0xFFFFFFFF));
}

} // namespace
} // namespace tsypr::test
