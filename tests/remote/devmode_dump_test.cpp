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

// The dump without what every line begins with.
Messages Dump(LogCapture& log, DeviceMode& dm)
{
    log.Take();
    DumpDevMode(dm.Get(), nullptr);
    Messages lines = log.Take();
    for (std::string& line : lines)
    {
        EXPECT_TRUE(line.starts_with(kLead)) << line;
        line.erase(0, std::size(kLead) - 1);
    }
    return lines;
}

const Messages kPublicLines = {"dmDeviceName = \"Office Laser\"",
                               "dmSpecVersion = 0x401",
                               "dmSize = 220",
                               "dmDriverExtra = 1112",
                               "dmFields = ORIENTATION, PAPERSIZE, COLOR",
                               "dmOrientation = PORTRAIT (set)",
                               "dmPaperSize = A4 (set)",
                               "dmPaperLength = 0",
                               "dmPaperWidth = 0",
                               "dmScale = 0",
                               "dmCopies = 0",
                               "dmDefaultSource = 0",
                               "dmPrintQuality = 0",
                               "dmColor = MONOCHROME (set)",
                               "dmDuplex = 0",
                               "dmYResolution = 0",
                               "dmTTOption = 0",
                               "dmCollate = FALSE",
                               "dmFormName = \"A4\"",
                               "dmNup = 0",
                               "dmICMMethod = 0",
                               "dmICMIntent = 0",
                               "dmMediaType = 0"};
const Messages kHiddenLines = {"compression(hidden) = 1",
                               "printTargetChoice(hidden) = 2",
                               "isPrintAsImage(hidden) = 0",
                               "isShowPreDlg(hidden) = 0",
                               "pagesPerSheet(hidden) = 4",
                               "nupLayout(hidden) = psk:RightBottom",
                               "staple(hidden) = psk:None",
                               "punch(hidden) = psk:LeftEdge",
                               "featureBitmap(hidden) = ",
                               "lockedSettings(hidden) = "};

TEST(DevModeDump, WritesEveryFieldInOrder)
{
    LogCapture log;
    DeviceMode dm = ClientDeviceMode();
    Messages expected = kPublicLines;
    expected.insert(expected.end(), kHiddenLines.begin(), kHiddenLines.end());
    EXPECT_EQ(expected, Dump(log, dm));
    DumpDevMode(dm.Get(), L"a title:");
    EXPECT_EQ("verbose PrintUtils::DumpDevMode(): a title:", log.Take().front());
    DumpDevMode(nullptr, L"a title:");
    EXPECT_EQ(Messages{}, log.Take());
    dm.Private().signature ^= 1;
    EXPECT_EQ(kPublicLines, Dump(log, dm));
    dm->dmDriverExtra = 892; // 1112 bytes in total
    EXPECT_EQ(kPublicLines.size(), Dump(log, dm).size());
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
    const Messages lines = Dump(log, dm);
    ASSERT_EQ(23U + 14U, lines.size());
    for (size_t i = 5; i < 23; ++i)
    {
        EXPECT_TRUE(lines[i].ends_with(" (set)")) << lines[i];
    }
    EXPECT_EQ("dmPrintQuality = 600 (set)", lines[12]);
    EXPECT_EQ((Messages{"dmPosition = -65527,7 (set)",
                        "dmDisplayOrientation = 131072 (set)",
                        "dmDisplayFixedOutput = 39321600 (set)",
                        "dmLogPixels = 96 (set)",
                        "dmBitsPerPel = 24 (set)",
                        "dmPelsWidth = 640 (set)",
                        "dmPelsHeight = 480 (set)",
                        "dmDisplayFlags = INTERLACED, TEXTMODE, 0x10 (set)",
                        "dmDisplayFrequency = 60 (set)",
                        "dmDitherType = LINEART (set)",
                        "dmPanningWidth = 11 (set)",
                        "dmPanningHeight = 12 (set)",
                        "dmReserved1 = 255(0xff)",
                        "dmReserved2 = -1(0xffffffff)"}),
              Messages(lines.begin() + 23, lines.end()));
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
        EXPECT_EQ(std::string(level) == "info", lines.empty());
        if (!lines.empty())
        {
            EXPECT_EQ(kLead + ("nupLayout(hidden) = " + std::string(29, 'k')), lines[1 + 23 + 5]);
        }
    }
}

TEST(DevModeNames, OfValuesOrElseTheNumberInABufferPerFunction)
{
    const char* const names[][2] = {{OrientationName(2), "LANDSCAPE"},
                                    {PaperSizeName(4), "LEDGER"},
                                    {PaperSizeName(16), "10X14"},
                                    {PaperSizeName(DMPAPER_ISO_B4), "ISO_B4"},
                                    {PaperSizeName(DMPAPER_PENV_10_ROTATED), "PENV_10_ROTATED"},
                                    {SourceName(15), "FORMSOURCE"},
                                    {PrintQualityName(-4), "HIGH"},
                                    {DuplexName(2), "VERTICAL"},
                                    {TTOptionName(4), "DOWNLOAD_OUTLINE"},
                                    {NupName(1), "SYSTEM"},
                                    {ICMIntentName(4), "ABS_COLORIMETRIC"},
                                    {DitherTypeName(10), "GRAYSCALE"},
                                    {DisplayOrientationName(0), "DEFAULT"},
                                    {OrientationName(-1), "4294967295"},
                                    {PaperSizeName(0), "0"},
                                    {SourceName(300), "300"},
                                    {PrintQualityName(600), "600"},
                                    {ColorName(3), "3"},
                                    {DuplexName(4), "4"},
                                    {TTOptionName(5), "5"},
                                    {CollateName(6), "6"},
                                    {NupName(7), "7"},
                                    {ICMMethodName(8), "8"},
                                    {ICMIntentName(9), "9"},
                                    {MediaTypeName(0xFFFFFFFF), "4294967295"},
                                    {DitherTypeName(11), "11"},
                                    {DisplayFixedOutputName(12), "12"},
                                    {DisplayOrientationName(13), "13"}};
    for (const auto& [name, expected] : names)
    {
        EXPECT_STREQ(expected, name);
    }
    const char* mine = SourceName(300);
    std::thread([] { EXPECT_STREQ("301", SourceName(301)); }).join();
    EXPECT_STREQ("300", mine);
    ReleaseNameBuffers();
    EXPECT_STREQ("302", SourceName(302));
}

TEST(DevModeNames, OfFlagsInAscendingOrderWithTheRestInHexadecimal)
{
    const char* fields = FieldsNames(DM_COPIES | DM_NUP | DM_ORIENTATION | 0x80000000U);
    const char* features = FeatureNames(0x1F);
    const char* locks = LockedNames(0xF7);
    EXPECT_STREQ("ORIENTATION, COPIES, 0x80000040", fields);
    EXPECT_STREQ("NUP, PRINT_AS_IMAGE, POPUP_PRE_DLG, COMPRESSION_ZLIB, FINISHING", features);
    EXPECT_STREQ("Duplex, Color, CompressionLevel, 0xf0", locks);
    EXPECT_STREQ("GRAYSCALE, INTERLACED, TEXTMODE", DisplayFlagsNames(7));
    EXPECT_STREQ("0x20", FeatureNames(0x20));
    EXPECT_STREQ("", LockedNames(0));
    EXPECT_STREQ("ORIENTATION, PAPERSIZE, PAPERLENGTH, PAPERWIDTH, SCALE, POSITION, DISPLAYORIENTATION, COPIES, "
                 "DEFAULTSOURCE, PRINTQUALITY, COLOR, DUPLEX, YRESOLUTION, TTOPTION, COLLATE, FORMNAME, LOGPIXELS, "
                 "BITSPERPEL, PELSWIDTH, PELSHEIGHT, DISPLAYFLAGS, DISPLAYFREQUENCY, ICMMETHOD, ICMINTENT, MEDIATYPE, "
                 "DITHERTYPE, PANNINGWIDTH, PANNINGHEIGHT, DISPLAYFIXEDOUTPUT, 0xc0000040",
                 FieldsNames(0xFFFFFFFF));
}

} // namespace
} // namespace tsypr::test
