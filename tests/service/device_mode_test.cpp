#include "service/device_mode.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "service/private_block.h"
#include "tests/service/service_library.h"

namespace tsypr::service::test
{
namespace
{

// A device mode, with its public part and the private block at its very end taken out.
struct Parts
{
    std::vector<std::byte> bytes;
    DEVMODEW mode{};
    PrivateBlock block{};

    explicit Parts(std::vector<std::byte> whole) : bytes(std::move(whole))
    {
        std::memcpy(&mode, bytes.data(), sizeof(mode));
        EXPECT_EQ(bytes.size(), std::size_t{mode.dmSize} + mode.dmDriverExtra);
        std::memcpy(&block, bytes.data() + bytes.size() - sizeof(block), sizeof(block));
    }

    std::vector<std::byte> Join() const
    {
        std::vector<std::byte> whole = bytes;
        std::memcpy(whole.data(), &mode, sizeof(mode));
        std::memcpy(whole.data() + whole.size() - sizeof(block), &block, sizeof(block));
        return whole;
    }
};

TEST(BuildDevMode, HoldsTheProfilesDefaults)
{
    const Parts parts(BuildDevMode(Parse(SampleProfile())));
    const DEVMODEW& mode = parts.mode;
    EXPECT_STREQ(mode.dmDeviceName, L"Sample");
    EXPECT_EQ(mode.dmDriverExtra, 10 + 1112);
    EXPECT_EQ(mode.dmFields, kSampleFields);
    EXPECT_TRUE(mode.dmOrientation == DMORIENT_LANDSCAPE && mode.dmPaperSize == 9 && mode.dmPaperLength == 0);
    EXPECT_TRUE(mode.dmDefaultSource == 15 && mode.dmMediaType == 2 && mode.dmScale == 90 && mode.dmCopies == 3);
    EXPECT_TRUE(mode.dmColor == DMCOLOR_MONOCHROME && mode.dmDuplex == DMDUP_HORIZONTAL && mode.dmCollate == 0);
    EXPECT_TRUE(mode.dmPrintQuality == 1200 && mode.dmYResolution == 600);
    EXPECT_STREQ(mode.dmFormName, L"Office A4");
    EXPECT_EQ(std::count(parts.bytes.begin() + 220, parts.bytes.begin() + 230, std::byte{0}), 10);

    const PrivateBlock& block = parts.block;
    EXPECT_EQ(std::memcmp(&block, "dmex\2\0\0\0S", 9), 0);
    EXPECT_TRUE(block.printTargetChoice == 1 && block.isPrintAsImage == 1 && block.isShowPreDlg == 1);
    EXPECT_TRUE(block.featureBitmap == 0x17 && block.lockedSettings == 0x6 && block.pagesPerSheet == 4);
    EXPECT_STREQ(block.nupLayout, L"psk:LeftTop");
    EXPECT_STREQ(block.staple, L"psk:StapleTopLeft");
    EXPECT_STREQ(block.punch, L"psk:LeftEdge");
    EXPECT_TRUE(block.watermark.font.lfHeight == 96 && block.watermark.color == RGB(255, 0, 0));
    EXPECT_STREQ(block.watermark.text, L"No Watermark");
}

TEST(BuildDevMode, LeavesOutWhatThePrinterLacksAndCutsNames)
{
    nlohmann::json document = SparseProfile();
    document["name"] = std::string(30, 'n') + "\xF0\x9F\x96\xA8" + std::string(200, 'n');
    const Parts sparse(BuildDevMode(Parse(document)));
    EXPECT_EQ(sparse.mode.dmFields, kSparseFields);
    EXPECT_EQ(sparse.mode.dmPrintQuality, DMRES_MEDIUM);
    EXPECT_EQ(std::wstring(sparse.mode.dmDeviceName), std::wstring(30, L'n'));
    EXPECT_EQ(std::wstring(sparse.block.printerName).size(), 232u);

    document = SampleProfile();
    document["deviceMode"]["paper"] = 256;
    const Parts custom(BuildDevMode(Parse(document)));
    EXPECT_EQ(custom.mode.dmFields, kSampleFields | DM_PAPERLENGTH | DM_PAPERWIDTH);
    EXPECT_TRUE(custom.mode.dmPaperWidth == 1000 && custom.mode.dmPaperLength == 2000);
}

const Profile& Sample()
{
    static const Profile profile = Parse(SampleProfile());
    return profile;
}

// Validates a printer's default device mode after `apply`; `expect`, applied to the defaults, gives the
// expected result.
template <class Apply, class Expect>
void Check(const char* name, Apply&& apply, Expect&& expect, const Profile& profile = Sample())
{
    Parts input(BuildDevMode(profile));
    Parts expected = input;
    apply(input);
    expect(expected);
    const std::vector<std::byte> repaired = ValidateDevMode(profile, input.Join());
    EXPECT_TRUE(repaired == expected.Join()) << name;
    EXPECT_TRUE(ValidateDevMode(profile, repaired) == repaired) << name << ": validating twice changes something";
}

// The same for one number of one part.
template <class Part, class Field>
void Check(
    const char* name, Part Parts::*part, Field Part::*field, int value, int expected, const Profile& profile = Sample())
{
    const auto set = [=](int number) { return [=](Parts& p) { p.*part.*field = static_cast<Field>(number); }; };
    Check(name, set(value), set(expected), profile);
}

constexpr auto kDefaults = [](Parts&) {};

template <std::size_t kLength>
void SetText(WCHAR (&field)[kLength], const std::wstring& text)
{
    std::ranges::fill(field, L'\0');
    std::ranges::copy(text, std::begin(field));
}

auto Paper(short id, short width, short length, DWORD bits = DM_PAPERWIDTH | DM_PAPERLENGTH)
{
    return [=](Parts& parts)
    {
        parts.mode.dmFields |= bits;
        parts.mode.dmPaperSize = id;
        parts.mode.dmPaperWidth = width;
        parts.mode.dmPaperLength = length;
        SetText(parts.mode.dmFormName, id == 256 ? L"Custom" : L"A3");
    };
}

auto Quality(short quality, short y, DWORD yBit)
{
    return [=](Parts& parts)
    {
        parts.mode.dmFields = (kSampleFields & ~DWORD{DM_YRESOLUTION}) | yBit;
        parts.mode.dmPrintQuality = quality;
        parts.mode.dmYResolution = y;
    };
}

TEST(ValidateDevMode, RepairsPublicFields)
{
    Check("no such orientation", &Parts::mode, &DEVMODEW::dmOrientation, 3, 2);
    Check("source", &Parts::mode, &DEVMODEW::dmDefaultSource, 7, 7);
    Check("no such source", &Parts::mode, &DEVMODEW::dmDefaultSource, 8, 15);
    Check("no such media type", &Parts::mode, &DEVMODEW::dmMediaType, 3, 2);
    Check("too many copies", &Parts::mode, &DEVMODEW::dmCopies, 51, 50);
    Check("too few copies", &Parts::mode, &DEVMODEW::dmCopies, -1, 1);
    Check("locked colour", &Parts::mode, &DEVMODEW::dmColor, DMCOLOR_COLOR, DMCOLOR_MONOCHROME);
    Check("duplex", &Parts::mode, &DEVMODEW::dmDuplex, 1, 1);
    Check("no such duplex", &Parts::mode, &DEVMODEW::dmDuplex, 4, 3);
    Check("scale 0", &Parts::mode, &DEVMODEW::dmScale, 0, 90);
    Check("driver version", &Parts::mode, &DEVMODEW::dmDriverVersion, 9, 0x100);
    Check("unknown bits", &Parts::mode, &DEVMODEW::dmFields, kSampleFields | DM_NUP | DM_ICMMETHOD, kSampleFields);
    const auto useForm = [](Parts& p) { SetText(p.mode.dmFormName, L"Elsewhere"); };
    Check("form name alone", useForm, kDefaults);
}

TEST(ValidateDevMode, RepairsPaperAndQuality)
{
    Check("standard paper drops dimensions", Paper(8, 1, 1), Paper(8, 0, 0, 0));
    Check("no such paper", Paper(10, 2000, 3000), kDefaults);
    Check("custom paper", Paper(256, 1500, 3000), Paper(256, 1500, 3000));
    Check("custom paper out of range", Paper(256, -5, 32767), Paper(256, 900, 5000));
    Check("custom paper with one dimension", Paper(256, 1500, 3000, DM_PAPERWIDTH), Paper(256, 1000, 2000));
    Check("no such resolution", Quality(1200, 300, DM_YRESOLUTION), kDefaults);
    Check("x resolution alone", Quality(600, 5, 0), Quality(600, 600, DM_YRESOLUTION));
    Check("quality level", Quality(DMRES_HIGH, 600, DM_YRESOLUTION), Quality(DMRES_HIGH, 0, 0));
    Check("no such quality level", Quality(DMRES_LOW, 600, DM_YRESOLUTION), kDefaults);
}

TEST(ValidateDevMode, RepairsPrivateFields)
{
    Check("locked compression", &Parts::block, &PrivateBlock::compression, 1, 2);
    Check("features", &Parts::block, &PrivateBlock::featureBitmap, 0, 0x17);
    Check("locks", &Parts::block, &PrivateBlock::lockedSettings, 0, 6);
    Check("no such pages per sheet", &Parts::block, &PrivateBlock::pagesPerSheet, 3, 4);
    Check("a flag becomes 0 or 1", &Parts::block, &PrivateBlock::isPrintAsImage, 0xFF, 1);
    Check("target", &Parts::block, &PrivateBlock::printTargetChoice, 2, 1);
    Check("reserved fields are carried", &Parts::block, &PrivateBlock::reserved2, 5, 5);
    const auto useLeading = [](Parts& p) { p.bytes[229] = std::byte{7}; };
    Check("leading bytes are carried", useLeading, useLeading);
    const auto clear = [](Parts& p) { p.block = {}; };
    Check("no signature", clear, kDefaults);
    const auto name = [](std::size_t length)
    { return [=](Parts& p) { SetText(p.block.printerName, std::wstring(length, L'x')); }; };
    Check("session name without end", name(256), name(255));
    const auto staple = [](const std::wstring& text) { return [=](Parts& p) { SetText(p.block.staple, text); }; };
    Check("keyword", staple(L"psk:None"), staple(L"psk:None"));
    Check("no such keyword", staple(L"psk:SaddleStitch"), kDefaults);
    Check("keyword without end", staple(std::wstring(30, L'p')), kDefaults);
    const auto text = [](std::size_t length)
    { return [=](Parts& p) { SetText(p.block.watermark.text, std::wstring(length, L'w')); }; };
    Check("watermark without end", text(128), text(127));
    Check("empty watermark", text(0), kDefaults);
    const auto setFlag = [](Parts& p) { p.block.watermark.flag = 9; };
    Check("watermark flag", setFlag, kDefaults);
}

TEST(ValidateDevMode, TakesFinishingAndCompressionOnlyWhereOffered)
{
    nlohmann::json document = SampleProfile();
    document["private"]["locked"] = {"duplex"};
    document["private"]["features"] = {"nup"};
    const Profile profile = Parse(document);
    Check("locked duplex", &Parts::mode, &DEVMODEW::dmDuplex, 1, 3, profile);
    Check("compression", &Parts::block, &PrivateBlock::compression, 3, 3, profile);
    Check("print as image", &Parts::block, &PrivateBlock::isPrintAsImage, 0, 1, profile);
    Check(
        "punch", [](Parts& p) { SetText(p.block.punch, L"psk:None"); }, kDefaults, profile);
}

TEST(ValidateDevMode, NeverReadsBeyondTheBytesWhateverTheySay)
{
    const std::vector<std::byte> defaults = BuildDevMode(Sample());
    using Words = std::initializer_list<WORD>;
    for (std::size_t size = 0; size <= defaults.size(); size += size < 240 ? 1 : 97)
    {
        for (const WORD claimed : Words{0, 70, 100, 219, 220, 0xFFFF})
        {
            for (const WORD extra : Words{0, 1111, 1112, 1122, 0xFFFF})
            {
                std::vector<std::byte> bytes = defaults;
                std::memcpy(bytes.data() + offsetof(DEVMODEW, dmSize), &claimed, 2);
                std::memcpy(bytes.data() + offsetof(DEVMODEW, dmDriverExtra), &extra, 2);
                bytes.resize(size);
                ASSERT_TRUE(ValidateDevMode(Sample(), {AtTheEndOfMemory(bytes), size}) == defaults)
                    << size << " bytes claiming " << claimed << " + " << extra;
            }
        }
    }
}

TEST(ValidateDevMode, UnderstandsShorterAndLongerPublicParts)
{
    Parts parts(BuildDevMode(Sample()));
    parts.mode.dmOrientation = DMORIENT_PORTRAIT;
    parts.mode.dmMediaType = 1;
    parts.block.pagesPerSheet = 2;
    for (const WORD size : std::initializer_list<WORD>{156, 228})
    {
        parts.mode.dmSize = size;
        std::vector<std::byte> bytes = parts.Join();
        const auto at = bytes.begin() + std::min<int>(size, 220);
        size < 220 ? bytes.erase(at, bytes.begin() + 220) : bytes.insert(at, 8, std::byte{0xEE});
        const Parts output(ValidateDevMode(Sample(), bytes));
        EXPECT_EQ(output.mode.dmOrientation, DMORIENT_PORTRAIT) << size;
        EXPECT_EQ(output.mode.dmMediaType, size < 220 ? 2u : 1u);
        EXPECT_EQ(output.block.pagesPerSheet, 2u) << size;
    }
}

} // namespace
} // namespace tsypr::service::test
