#include "remote/devmode_merge.h"
#include "tests/remote/fake_service.h"

#include <cstring>

namespace tsypr::test
{
namespace
{

using Messages = std::vector<std::string>;

constexpr DWORD kBoth = DM_IN_BUFFER | DM_OUT_BUFFER;

class DevModeMerge : public RemoteTest
{
protected:
    DevModeMerge() : current(ClientDeviceMode()), in(ClientDeviceMode())
    {
        in->dmFields = 0;
    }

    // What becomes of an output full of other bytes.
    DeviceMode Merged(DWORD mode = kBoth)
    {
        DeviceMode out(sizeof(DEVMODEW), kPrivateDevModeSize, 0x5A);
        EXPECT_TRUE(MergeAndCopyDM(out.Get(), in.Get(), current.Get(), mode));
        return out;
    }

    void OfferPapers()
    {
        service.capabilities[DC_PAPERS] = ListReply<uint16_t>(4, {1, 9, 256, 9});
        service.capabilities[DC_PAPERSIZE] = ListReply<POINT>(4, {{2159, 2794}, {2100, 2970}, {1, 2}, {3, 4}});
    }

    DeviceMode current;
    DeviceMode in;
};

template <auto Field>
void Set(DEVMODEW* dm)
{
    dm->*Field = 7;
}

struct FieldCase
{
    DWORD bit;
    void (*set)(DEVMODEW* dm); // stores 7
    uint32_t lock;
};

constexpr FieldCase kFieldCases[] = {{DM_ORIENTATION, Set<&DEVMODEW::dmOrientation>, 0},
                                     {DM_DUPLEX, Set<&DEVMODEW::dmDuplex>, kLockedDuplex},
                                     {DM_DEFAULTSOURCE, Set<&DEVMODEW::dmDefaultSource>, 0},
                                     {DM_COLOR, Set<&DEVMODEW::dmColor>, kLockedColor},
                                     {DM_PRINTQUALITY, Set<&DEVMODEW::dmPrintQuality>, 0},
                                     {DM_YRESOLUTION, Set<&DEVMODEW::dmYResolution>, 0},
                                     {DM_COPIES, Set<&DEVMODEW::dmCopies>, 0},
                                     {DM_COLLATE, Set<&DEVMODEW::dmCollate>, 0},
                                     {DM_SCALE, Set<&DEVMODEW::dmScale>, 0}};

TEST_F(DevModeMerge, PlainFieldIsCopiedWithItsBitWhenAskedForAndNotLocked)
{
    for (const FieldCase& one : kFieldCases)
    {
        SCOPED_TRACE(one.bit);
        for (const bool asked : {true, false})
        {
            for (const uint32_t locks : {0U, 7U & ~one.lock, one.lock, 7U})
            {
                in.Private().lockedSettings = ~locks; // never looked at
                current.Private().lockedSettings = locks;
                one.set(in.Get());
                in->dmFields = asked ? one.bit : 0;
                DeviceMode expected = current;
                if (asked && (locks & one.lock) == 0)
                {
                    one.set(expected.Get());
                    expected->dmFields |= one.bit;
                }
                log.Take();
                EXPECT_EQ(expected.Whole(), Merged().Whole());
                EXPECT_EQ(asked && one.bit == DM_SCALE ? Messages{"verbose MergeAndCopyDM, replicate DM_SCALE."}
                                                       : Messages{},
                          log.Take());
            }
        }
    }
}

TEST_F(DevModeMerge, FieldBeyondTheInputsSizeIsAbsent)
{
    for (const WORD size : {WORD{72}, WORD{75}, WORD{76}, WORD{77}})
    {
        in = DeviceMode(size, kPrivateDevModeSize, 7);
        in->dmFields = size >= 76 ? 0xFFFFFFFF : in->dmFields;
        const DeviceMode merged = Merged();
        EXPECT_EQ(0, std::memcmp(merged.Get(), current.Get(), sizeof(DEVMODEW)));
    }
    EXPECT_EQ(Messages{}, service.TakeCalls());
}

TEST_F(DevModeMerge, NothingElseIsMerged)
{
    in = DeviceMode(sizeof(DEVMODEW), 0, 0x66);
    in->dmFields = 0xFFFFFFFF & ~static_cast<DWORD>(DM_PAPERSIZE | DM_FORMNAME | DM_MEDIATYPE);
    for (const FieldCase& one : kFieldCases)
    {
        in->dmFields &= ~one.bit;
    }
    EXPECT_EQ(current.Whole(), Merged().Whole());
    EXPECT_EQ(Messages{}, service.TakeCalls());
}

TEST_F(DevModeMerge, PaperSizeRule)
{
    constexpr DWORD kDimensions = DM_PAPERLENGTH | DM_PAPERWIDTH;
    const std::string unsupported = "verbose MergeAndCopyDM, printer [Office Laser] don't support paper size 8, use "
                                    "driver setting";
    const Messages noDimensions = {
        "error GetDeviceCapabilitiesData, failed to call VpGetDeviceCapabilities to get cap 3.",
        "error GetPaperDimensionByIndex, failed to retrieve capabilities for DC_PAPERSIZE.",
        "error MergeAndCopyDM, printer [Office Laser] failed to get width and length for paper size 9"};
    const struct
    {
        short paper;
        DWORD asked; // besides DM_PAPERSIZE
        bool dimensionsKnown;
        short paperOut, widthOut, lengthOut;
        DWORD dimensionBits;
        Messages errors;
        int queries;
    } cases[] = {{8, kDimensions, true, 1, 111, 222, kDimensions, {}, 1},
                 {9, 0, true, 9, 111, 222, 0, {}, 1},
                 {9, DM_PAPERLENGTH, true, 9, 111, 222, 0, {}, 1},
                 {9, DM_PAPERWIDTH, true, 9, 111, 222, 0, {}, 1},
                 {256, DM_PAPERWIDTH, true, 256, 111, 222, 0, {}, 1},
                 {9, kDimensions, true, 9, 2100, 2970, kDimensions, {}, 2},
                 {9, kDimensions, false, 9, 333, 444, kDimensions, noDimensions, 2},
                 {256, kDimensions, true, 256, 333, 444, kDimensions, {}, 1}};
    current->dmPaperSize = 1;
    current->dmPaperWidth = 111;
    current->dmPaperLength = 222;
    current->dmFields = DM_PAPERSIZE | kDimensions;
    in->dmPaperWidth = 333;
    in->dmPaperLength = 444;
    for (const auto& one : cases)
    {
        SCOPED_TRACE(one.paper);
        OfferPapers();
        if (!one.dimensionsKnown)
        {
            service.capabilities.erase(DC_PAPERSIZE);
        }
        in->dmPaperSize = one.paper;
        in->dmFields = DM_PAPERSIZE | one.asked;
        const DeviceMode out = Merged();
        EXPECT_EQ(one.paperOut, out->dmPaperSize);
        EXPECT_EQ(one.widthOut, out->dmPaperWidth);
        EXPECT_EQ(one.lengthOut, out->dmPaperLength);
        EXPECT_EQ(DM_PAPERSIZE | one.dimensionBits, out->dmFields);
        const Messages messages = log.Take();
        Messages errors;
        std::copy_if(messages.begin(),
                     messages.end(),
                     std::back_inserter(errors),
                     [](const std::string& message) { return message.starts_with("error "); });
        EXPECT_EQ(one.errors, errors);
        EXPECT_EQ(one.paper == 8, messages.back() == unsupported);
        const Messages calls = service.TakeCalls();
        EXPECT_EQ(one.queries, std::count(calls.begin(), calls.end(), "open Office Laser"));
    }
    // Dimensions without a paper size are not merged.
    in->dmFields = kDimensions;
    EXPECT_EQ(111, Merged()->dmPaperWidth);
}

TEST_F(DevModeMerge, MediaTypeMustBeInTheClientsList)
{
    current->dmMediaType = 1;
    in->dmFields = DM_MEDIATYPE;
    service.capabilities[DC_MEDIATYPES] = ListReply<uint32_t>(2, {1, 300});
    for (const DWORD type : {300U, 301U})
    {
        in->dmMediaType = type;
        DeviceMode expected = current;
        if (type == 300)
        {
            expected->dmMediaType = 300;
            expected->dmFields |= DM_MEDIATYPE;
        }
        EXPECT_EQ(expected.Whole(), Merged().Whole());
        EXPECT_EQ((Messages{"open Office Laser", "caps 35", "close", "freeCaps"}), service.TakeCalls());
    }
}

TEST_F(DevModeMerge, FormNameIsCutAndTerminated)
{
    in->dmFields = DM_FORMNAME;
    wmemset(in->dmFormName, L'f', CCHFORMNAME);
    DeviceMode out = Merged();
    EXPECT_EQ(std::wstring(31, L'f'), out->dmFormName);
    EXPECT_EQ(in->dmLogPixels, out->dmLogPixels);
    EXPECT_EQ(current->dmFields | DM_FORMNAME, out->dmFields);
    wcscpy(in->dmFormName, L"A5");
    EXPECT_STREQ(L"A5", Merged()->dmFormName);
}

// Gives every private field another value than the client's.
void FillOther(PrivateDevMode& block, uint32_t features)
{
    std::memset(&block, 0x33, sizeof(block));
    block.featureBitmap = features;
    for (auto* keyword : {&block.nupLayout, &block.staple, &block.punch})
    {
        Fill(*keyword, L'k');
    }
}

TEST_F(DevModeMerge, PrivateFieldsFollowTheInputsFeaturesAndTheOutputsLocks)
{
    const std::wstring cutKeyword(29, L'k');
    for (const uint32_t features : {0U, kFeatureNup, kFeatureFinishing, 0xFFFFFFFFU, 0x80000000U})
    {
        for (const uint32_t locks : {0U, 3U, kLockedCompressionLevel})
        {
            FillOther(in.Private(), features); // its signature is wrong, which does not matter
            current.Private().lockedSettings = locks;
            current.Private().featureBitmap = ~features;
            Fill(current.Private().printerName, L'p');
            DeviceMode out = Merged();
            DeviceMode expected = current;
            PrivateDevMode& block = expected.Private();
            block.compression = locks == kLockedCompressionLevel ? block.compression : 0x33333333;
            block.printTargetChoice = 0x33333333;
            block.isPrintAsImage = 0x33;
            block.isShowPreDlg = 0x33;
            block.featureBitmap = features;
            block.reserved2 = 0x33333333;
            std::memset(block.watermark, 0x33, sizeof(block.watermark));
            block.printerName.Terminate();
            if ((features & kFeatureNup) != 0)
            {
                block.pagesPerSheet = 0x33333333;
                block.nupLayout.Write(cutKeyword.c_str());
            }
            if ((features & kFeatureFinishing) != 0)
            {
                block.staple.Write(cutKeyword.c_str());
                block.punch.Write(cutKeyword.c_str());
            }
            EXPECT_EQ(expected.Whole(), out.Whole()) << features << " " << locks;
        }
    }
}

TEST_F(DevModeMerge, BlocksOfDifferentExtraSizesMeetAtTheirEnds)
{
    in = DeviceMode(200, 1300);
    in.Private().compression = 9;
    EXPECT_EQ(9U, Merged().Private().compression);
    in = DeviceMode(220, 892); // too small for a block
    EXPECT_EQ(current.Whole(), Merged().Whole());
    in = ClientDeviceMode();
    in->dmFields = 0;
    in.Private().compression = 9;
    current.Private().signature = 0;
    EXPECT_EQ(current.Whole(), Merged().Whole());
}

// The extra area may be stated so small that the block reaches into the public part.
TEST_F(DevModeMerge, SizesStayWhenTheBlockLiesOverThem)
{
    current = DeviceMode(220, 956);
    in.Private().compression = 0x01000100;
    const DeviceMode out = Merged();
    EXPECT_EQ(220, out->dmSize);
    EXPECT_EQ(956, out->dmDriverExtra);
}

TEST_F(DevModeMerge, ModeSaysWhatIsReadAndWritten)
{
    in->dmFields = DM_COPIES;
    in->dmCopies = 5;
    const DeviceMode other(220, 1112, 0x5A);
    EXPECT_EQ(other.Whole(), Merged(0).Whole());
    EXPECT_EQ(current.Whole(), Merged(DM_OUT_BUFFER).Whole());
    EXPECT_EQ(5, Merged()->dmCopies);
    const DeviceMode merged = Merged(DM_IN_BUFFER);
    EXPECT_EQ(5, merged->dmCopies);
    EXPECT_EQ(other->dmOrientation, merged->dmOrientation);
    EXPECT_EQ(1U, Merged(DM_IN_BUFFER).Private().compression);

    DeviceMode inPlace = in; // the same memory in and out
    EXPECT_TRUE(MergeAndCopyDM(inPlace.Get(), inPlace.Get(), current.Get(), kBoth));
    EXPECT_EQ(Merged().Whole(), inPlace.Whole());
    DeviceMode out;
    EXPECT_TRUE(MergeAndCopyDM(out.Get(), nullptr, current.Get(), kBoth));
    EXPECT_EQ(current.Whole(), out.Whole());
}

TEST_F(DevModeMerge, NullOutputOrCurrentIsRefused)
{
    const Messages refused = {"error MergeAndCopyDM, dmOut and dmCurrent cannot be NULL."};
    const Bytes before = in.Whole();
    EXPECT_FALSE(MergeAndCopyDM(nullptr, in.Get(), current.Get(), kBoth));
    EXPECT_EQ(refused, log.Take());
    EXPECT_FALSE(MergeAndCopyDM(in.Get(), in.Get(), nullptr, kBoth));
    EXPECT_EQ(refused, log.Take());
    EXPECT_EQ(before, in.Whole());
}

} // namespace
} // namespace tsypr::test
