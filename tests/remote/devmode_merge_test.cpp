#include "remote/devmode_merge.h"
#include "tests/remote/fake_service.h"

#include <cstring>

namespace tsypr::test
{
namespace
{

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

    DeviceMode current;
    DeviceMode in;
};

template <auto Field>
void Set(DEVMODEW* dm)
{
    dm->*Field = 7;
}

const struct
{
    DWORD bit;
    void (*set)(DEVMODEW* dm); // stores 7
    uint32_t lock;
} kFieldCases[] = {{DM_ORIENTATION, Set<&DEVMODEW::dmOrientation>, 0},
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
    for (const auto& one : kFieldCases)
    {
        for (const uint32_t locks : {0U, 7U & ~one.lock, one.lock, 7U})
        {
            in.Private().lockedSettings = ~locks; // never looked at
            current.Private().lockedSettings = locks;
            one.set(in.Get());
            in->dmFields = 0;
            DeviceMode expected = current;
            EXPECT_EQ(expected.Whole(), Merged().Whole()) << one.bit;
            EXPECT_EQ(Messages{}, log.Take());
            in->dmFields = one.bit;
            if ((locks & one.lock) == 0)
            {
                one.set(expected.Get());
                expected->dmFields |= one.bit;
            }
            EXPECT_EQ(expected.Whole(), Merged().Whole()) << one.bit << " " << locks;
            EXPECT_EQ(one.bit == DM_SCALE ? Messages{"verbose MergeAndCopyDM, replicate DM_SCALE."} : Messages{},
                      log.Take());
        }
    }
}

TEST_F(DevModeMerge, NothingElseIsMerged)
{
    in = DeviceMode(sizeof(DEVMODEW), 0, 0x66);
    in->dmFields = 0xFFFFFFFF & ~static_cast<DWORD>(DM_PAPERSIZE | DM_FORMNAME | DM_MEDIATYPE);
    for (const auto& one : kFieldCases)
    {
        in->dmFields &= ~one.bit;
    }
    EXPECT_EQ(current.Whole(), Merged().Whole());
    EXPECT_EQ(Messages{}, service.TakeCalls());
}

TEST_F(DevModeMerge, PaperSizeRule)
{
    constexpr DWORD kDimensions = DM_PAPERLENGTH | DM_PAPERWIDTH;
    const Messages noDimensions = {
        "error GetDeviceCapabilitiesData, failed to call VpGetDeviceCapabilities to get cap 3.",
        "error GetPaperDimensionByIndex, failed to retrieve capabilities for DC_PAPERSIZE.",
        "error MergeAndCopyDM, printer [Office Laser] failed to get width and length for paper size 9"};
    const struct
    {
        short paper;
        DWORD asked; // besides DM_PAPERSIZE
        bool dimensionsKnown;
        const char* out; // paper, width, length
        DWORD bitsOut;
        int queries;
    } cases[] = {{9, kDimensions, false, "9 333 444", kDimensions, 2},
                 {8, kDimensions, true, "1 111 222", kDimensions, 1},
                 {9, 0, true, "9 111 222", 0, 1},
                 {9, DM_PAPERLENGTH, true, "9 111 222", 0, 1},
                 {256, DM_PAPERWIDTH, true, "256 111 222", 0, 1},
                 {9, kDimensions, true, "9 2100 2970", kDimensions, 2},
                 {256, kDimensions, true, "256 333 444", kDimensions, 1}};
    current->dmPaperSize = 1;
    current->dmPaperWidth = 111;
    current->dmPaperLength = 222;
    current->dmFields = DM_PAPERSIZE | kDimensions;
    in->dmPaperWidth = 333;
    in->dmPaperLength = 444;
    service.capabilities[DC_PAPERS] = ListReply<uint16_t>(4, {1, 9, 256, 9});
    for (const auto& one : cases)
    {
        SCOPED_TRACE(one.paper);
        in->dmPaperSize = one.paper;
        in->dmFields = DM_PAPERSIZE | one.asked;
        DeviceMode out = Merged();
        EXPECT_EQ(one.out, Words() << out->dmPaperSize << out->dmPaperWidth << out->dmPaperLength);
        EXPECT_EQ(DM_PAPERSIZE | one.bitsOut, out->dmFields);
        const Messages messages = log.Take();
        EXPECT_EQ(one.paper == 8, messages.back().ends_with(" don't support paper size 8, use driver setting"));
        EXPECT_EQ(one.dimensionsKnown ? Messages{} : noDimensions, ErrorsOf(messages));
        const Messages calls = service.TakeCalls();
        EXPECT_EQ(one.queries, std::count(calls.begin(), calls.end(), "open Office Laser"));
        service.capabilities[DC_PAPERSIZE] = ListReply<POINT>(4, {{2159, 2794}, {2100, 2970}, {1, 2}, {3, 4}});
    }
    in->dmFields = kDimensions; // without a paper size they are not merged
    EXPECT_EQ(111, Merged()->dmPaperWidth);
}

TEST_F(DevModeMerge, MediaTypeMustBeInTheClientsList)
{
    current->dmMediaType = 1;
    in->dmFields = DM_MEDIATYPE;
    service.capabilities[DC_MEDIATYPES] = ListReply<uint32_t>(2, {1, 300});
    in->dmMediaType = 301;
    EXPECT_EQ(current.Whole(), Merged().Whole());
    EXPECT_EQ((Messages{"open Office Laser", "caps 35", "close", "freeCaps"}), service.TakeCalls());
    in->dmMediaType = 300;
    DeviceMode expected = current;
    expected->dmMediaType = 300;
    expected->dmFields |= DM_MEDIATYPE;
    EXPECT_EQ(expected.Whole(), Merged().Whole());
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

TEST_F(DevModeMerge, PrivateFieldsFollowTheInputsFeaturesAndTheOutputsLocks)
{
    const std::wstring cutKeyword(29, 0x3333);
    for (const uint32_t features : {0U, kFeatureNup, kFeatureFinishing, 0xFFFFFFFFU, 0x80000000U})
    {
        for (const uint32_t locks : {0U, 3U, kLockedCompressionLevel})
        {
            std::memset(&in.Private(), 0x33, sizeof(PrivateDevMode)); // the signature is wrong, which does not matter
            in.Private().featureBitmap = features;
            current.Private().lockedSettings = locks;
            current.Private().featureBitmap = ~features;
            Fill(current.Private().printerName, L'p');
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
            EXPECT_EQ(expected.Whole(), Merged().Whole()) << features << " " << locks;
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
    current = DeviceMode(220, 956); // stated so small that the block lies over the sizes, which stay
    in.Private().compression = 0x01000100;
    DeviceMode out = Merged();
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
    DeviceMode merged = Merged(DM_IN_BUFFER);
    EXPECT_EQ(5, merged->dmCopies);
    EXPECT_EQ(0x5A5A, merged->dmOrientation);
    EXPECT_EQ(1U, merged.Private().compression);

    DeviceMode inPlace = in; // the same memory in and out
    EXPECT_TRUE(MergeAndCopyDM(inPlace.Get(), inPlace.Get(), current.Get(), kBoth));
    EXPECT_EQ(Merged().Whole(), inPlace.Whole());
    DeviceMode out;
    EXPECT_TRUE(MergeAndCopyDM(out.Get(), nullptr, current.Get(), kBoth));
    EXPECT_EQ(current.Whole(), out.Whole());
    log.Take();
    EXPECT_FALSE(MergeAndCopyDM(nullptr, in.Get(), current.Get(), kBoth));
    EXPECT_FALSE(MergeAndCopyDM(out.Get(), in.Get(), nullptr, kBoth));
    EXPECT_EQ(Messages(2, "error MergeAndCopyDM, dmOut and dmCurrent cannot be NULL."), log.Take());
    EXPECT_EQ(current.Whole(), out.Whole());
}

} // namespace
} // namespace tsypr::test
