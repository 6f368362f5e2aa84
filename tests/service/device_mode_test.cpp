#include "service/device_mode.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "service/private_block.h"
#include "tests/service/service_library.h"

namespace tsypr::service::test
{
namespace
{

// A device mode taken apart: the public part, the bytes between, and the private block at the very end.
struct Parts
{
    DEVMODEW mode{};
    std::vector<std::byte> leading;
    PrivateBlock block{};

    explicit Parts(const std::vector<std::byte>& bytes)
    {
        std::memcpy(&mode, bytes.data(), sizeof(mode));
        EXPECT_EQ(bytes.size(), std::size_t{mode.dmSize} + mode.dmDriverExtra);
        std::memcpy(&block, bytes.data() + bytes.size() - sizeof(block), sizeof(block));
        leading.assign(bytes.begin() + sizeof(mode), bytes.end() - sizeof(block));
    }

    std::vector<std::byte> Join() const
    {
        std::vector<std::byte> bytes(sizeof(mode));
        std::memcpy(bytes.data(), &mode, sizeof(mode));
        bytes.insert(bytes.end(), leading.begin(), leading.end());
        const auto* tail = reinterpret_cast<const std::byte*>(&block);
        bytes.insert(bytes.end(), tail, tail + sizeof(block));
        return bytes;
    }
};

constexpr DWORD kSampleFields = DM_ORIENTATION | DM_PAPERSIZE | DM_SCALE | DM_COPIES | DM_DEFAULTSOURCE |
                                DM_PRINTQUALITY | DM_COLOR | DM_DUPLEX | DM_YRESOLUTION | DM_COLLATE | DM_FORMNAME |
                                DM_MEDIATYPE;

TEST(BuildDevMode, HoldsTheProfilesPublicDefaults)
{
    const Parts parts(BuildDevMode(Parse(SampleProfile())));
    const DEVMODEW& mode = parts.mode;
    EXPECT_STREQ(mode.dmDeviceName, L"Sample");
    EXPECT_EQ(mode.dmSize, 220);
    EXPECT_EQ(mode.dmDriverExtra, 10 + 1112);
    EXPECT_EQ(mode.dmFields, kSampleFields);
    EXPECT_EQ(mode.dmOrientation, DMORIENT_LANDSCAPE);
    EXPECT_EQ(mode.dmPaperSize, 9);
    EXPECT_EQ(mode.dmPaperLength, 0);
    EXPECT_EQ(mode.dmDefaultSource, 15);
    EXPECT_EQ(mode.dmMediaType, 2u);
    EXPECT_EQ(mode.dmCopies, 3);
    EXPECT_EQ(mode.dmCollate, DMCOLLATE_FALSE);
    EXPECT_EQ(mode.dmColor, DMCOLOR_MONOCHROME);
    EXPECT_EQ(mode.dmDuplex, DMDUP_HORIZONTAL);
    EXPECT_EQ(mode.dmPrintQuality, 1200);
    EXPECT_EQ(mode.dmYResolution, 600);
    EXPECT_EQ(mode.dmScale, 90);
    EXPECT_STREQ(mode.dmFormName, L"Office A4");
    EXPECT_EQ(parts.leading, std::vector<std::byte>(10));
}

TEST(BuildDevMode, EndsWithThePrivateBlockAtItsFixedOffsets)
{
    const std::vector<std::byte> bytes = BuildDevMode(Parse(SampleProfile()));
    const std::byte* block = bytes.data() + bytes.size() - 1112;
    const auto number = [&](std::size_t offset)
    {
        DWORD value = 0;
        std::memcpy(&value, block + offset, sizeof(value));
        return value;
    };
    const auto text = [&](std::size_t offset)
    {
        std::wstring value(30, L'\0');
        std::memcpy(value.data(), block + offset, 60);
        return value.substr(0, value.find(L'\0'));
    };
    EXPECT_EQ(std::memcmp(block, "dmex", 4), 0);
    EXPECT_EQ(number(4), 2u);
    EXPECT_EQ(text(8), L"Sample");
    EXPECT_EQ(number(520), 1u);
    EXPECT_EQ(number(524), 0x0101u);
    EXPECT_EQ(number(528), 0x17u);
    EXPECT_EQ(number(536), 4u);
    EXPECT_EQ(text(540), L"psk:LeftTop");
    EXPECT_EQ(text(600), L"psk:StapleTopLeft");
    EXPECT_EQ(text(660), L"psk:LeftEdge");
    EXPECT_EQ(number(720), 0x6u);
    EXPECT_EQ(number(728), 96u);
    EXPECT_EQ(number(728 + 16), 700u);
    EXPECT_EQ(text(728 + 28), L"Times New Roman");
    EXPECT_EQ(number(728 + 96), 255u);
    EXPECT_EQ(text(728 + 100), L"No Watermark");
    EXPECT_EQ(number(728 + 376), 0u);
}

TEST(BuildDevMode, LeavesOutWhatThePrinterLacksAndCutsNames)
{
    nlohmann::json document = SparseProfile();
    document["name"] = std::string(30, 'n') + "\xF0\x9F\x96\xA8" + std::string(200, 'n');
    const Parts sparse(BuildDevMode(Parse(document)));
    EXPECT_EQ(sparse.mode.dmFields, DWORD{DM_ORIENTATION | DM_PAPERSIZE | DM_COPIES | DM_PRINTQUALITY | DM_FORMNAME});
    EXPECT_EQ(sparse.mode.dmPrintQuality, DMRES_MEDIUM);
    EXPECT_STREQ(sparse.mode.dmFormName, L"Letter");
    EXPECT_EQ(std::wstring(sparse.mode.dmDeviceName), std::wstring(30, L'n'));
    EXPECT_EQ(std::wstring(sparse.block.printerName).size(), 232u);

    document = SampleProfile();
    document["deviceMode"]["paper"] = 256;
    const Parts custom(BuildDevMode(Parse(document)));
    EXPECT_EQ(custom.mode.dmFields, kSampleFields | DM_PAPERLENGTH | DM_PAPERWIDTH);
    EXPECT_EQ(custom.mode.dmPaperWidth, 1000);
    EXPECT_EQ(custom.mode.dmPaperLength, 2000);
}

// A change to a default device mode, and what validation must make of it.
struct Change
{
    const char* name;
    std::function<void(Parts&)> apply;
    std::function<void(Parts&)> expect; // applied to the default gives the expected result
};

void UsePaper(Parts& parts, short paper, short width, short length)
{
    parts.mode.dmFields |= DM_PAPERSIZE | DM_PAPERWIDTH | DM_PAPERLENGTH;
    parts.mode.dmPaperSize = paper;
    parts.mode.dmPaperWidth = width;
    parts.mode.dmPaperLength = length;
}

void UseForm(Parts& parts, const wchar_t* name)
{
    std::ranges::fill(parts.mode.dmFormName, L'\0');
    wcscpy(parts.mode.dmFormName, name);
}

const auto kNothing = [](Parts&) {};

const std::vector<Change>& PublicChanges()
{
    static const std::vector<Change> changes = {
        {"orientation", [](Parts& p) { p.mode.dmOrientation = 1; }, [](Parts& p) { p.mode.dmOrientation = 1; }},
        {"no such orientation", [](Parts& p) { p.mode.dmOrientation = 3; }, kNothing},
        {"bit not set",
         [](Parts& p)
         {
             p.mode.dmFields = 0;
             p.mode.dmOrientation = 1;
             p.mode.dmCopies = 7;
         },
         kNothing},
        {"source", [](Parts& p) { p.mode.dmDefaultSource = 7; }, [](Parts& p) { p.mode.dmDefaultSource = 7; }},
        {"no such source", [](Parts& p) { p.mode.dmDefaultSource = 8; }, kNothing},
        {"no such media type", [](Parts& p) { p.mode.dmMediaType = 3; }, kNothing},
        {"too many copies", [](Parts& p) { p.mode.dmCopies = 51; }, [](Parts& p) { p.mode.dmCopies = 50; }},
        {"too few copies", [](Parts& p) { p.mode.dmCopies = -1; }, [](Parts& p) { p.mode.dmCopies = 1; }},
        {"locked colour", [](Parts& p) { p.mode.dmColor = DMCOLOR_COLOR; }, kNothing},
        {"duplex", [](Parts& p) { p.mode.dmDuplex = 1; }, [](Parts& p) { p.mode.dmDuplex = 1; }},
        {"no such duplex", [](Parts& p) { p.mode.dmDuplex = 4; }, kNothing},
        {"scale 0", [](Parts& p) { p.mode.dmScale = 0; }, kNothing},
        {"unknown bits and fields",
         [](Parts& p)
         {
             p.mode.dmFields |= DM_NUP | DM_ICMMETHOD | 0x80000000u;
             p.mode.dmICMMethod = 2;
             UseForm(p, L"Elsewhere");
         },
         kNothing},
        {"sizes and versions",
         [](Parts& p)
         {
             p.mode.dmSpecVersion = 1;
             p.mode.dmDriverVersion = 9;
         },
         kNothing},
    };
    return changes;
}

const std::vector<Change>& PaperAndQualityChanges()
{
    static const std::vector<Change> changes = {
        {"standard paper drops dimensions",
         [](Parts& p) { UsePaper(p, 8, 1, 1); },
         [](Parts& p)
         {
             p.mode.dmPaperSize = 8;
             UseForm(p, L"A3");
         }},
        {"no such paper", [](Parts& p) { UsePaper(p, 10, 2000, 3000); }, kNothing},
        {"custom paper",
         [](Parts& p) { UsePaper(p, 256, 1500, 3000); },
         [](Parts& p)
         {
             UsePaper(p, 256, 1500, 3000);
             UseForm(p, L"Custom");
         }},
        {"custom paper out of range",
         [](Parts& p) { UsePaper(p, 256, -5, 32767); },
         [](Parts& p)
         {
             UsePaper(p, 256, 900, 5000);
             UseForm(p, L"Custom");
         }},
        {"custom paper with one dimension",
         [](Parts& p)
         {
             UsePaper(p, 256, 1500, 3000);
             p.mode.dmFields &= ~DWORD{DM_PAPERLENGTH};
         },
         [](Parts& p)
         {
             UsePaper(p, 256, 1000, 2000);
             UseForm(p, L"Custom");
         }},
        {"resolution", [](Parts& p) { p.mode.dmYResolution = 1200; }, [](Parts& p) { p.mode.dmYResolution = 1200; }},
        {"no such resolution", [](Parts& p) { p.mode.dmYResolution = 300; }, kNothing},
        {"x resolution alone",
         [](Parts& p)
         {
             p.mode.dmFields &= ~DWORD{DM_YRESOLUTION};
             p.mode.dmPrintQuality = 600;
             p.mode.dmYResolution = 5;
         },
         [](Parts& p) { p.mode.dmPrintQuality = p.mode.dmYResolution = 600; }},
        {"quality level",
         [](Parts& p) { p.mode.dmPrintQuality = DMRES_HIGH; },
         [](Parts& p)
         {
             p.mode.dmPrintQuality = DMRES_HIGH;
             p.mode.dmYResolution = 0;
             p.mode.dmFields &= ~DWORD{DM_YRESOLUTION};
         }},
        {"no such quality level", [](Parts& p) { p.mode.dmPrintQuality = DMRES_LOW; }, kNothing},
    };
    return changes;
}

const std::vector<Change>& PrivateChanges()
{
    static const std::vector<Change> changes = {
        {"leading bytes", [](Parts& p) { p.leading[9] = std::byte{7}; }, [](Parts& p) { p.leading[9] = std::byte{7}; }},
        {"locked compression", [](Parts& p) { p.block.compression = 1; }, kNothing},
        {"features and locks",
         [](Parts& p)
         {
             p.block.featureBitmap = 0;
             p.block.lockedSettings = 0;
         },
         kNothing},
        {"wrong signature",
         [](Parts& p)
         {
             p.block.signature = 1;
             p.block.pagesPerSheet = 2;
         },
         kNothing},
        {"session name",
         [](Parts& p) { wcscpy(p.block.printerName, L"Sample,Session 4"); },
         [](Parts& p) { wcscpy(p.block.printerName, L"Sample,Session 4"); }},
        {"name without end",
         [](Parts& p) { std::ranges::fill(p.block.printerName, L'x'); },
         [](Parts& p)
         {
             std::ranges::fill(p.block.printerName, L'x');
             p.block.printerName[255] = 0;
         }},
        {"pages per sheet", [](Parts& p) { p.block.pagesPerSheet = 2; }, [](Parts& p) { p.block.pagesPerSheet = 2; }},
        {"no such pages per sheet", [](Parts& p) { p.block.pagesPerSheet = 3; }, kNothing},
        {"layout",
         [](Parts& p) { wcscpy(p.block.nupLayout, L"ns0000:Spiral"); },
         [](Parts& p)
         {
             std::ranges::fill(p.block.nupLayout, L'\0');
             wcscpy(p.block.nupLayout, L"ns0000:Spiral");
         }},
        {"keyword without end", [](Parts& p) { std::ranges::fill(p.block.staple, L'p'); }, kNothing},
        {"no such punch", [](Parts& p) { wcscpy(p.block.punch, L"psk:TopEdge"); }, kNothing},
        {"flags become 0 or 1",
         [](Parts& p)
         {
             p.block.isPrintAsImage = 0xFF;
             p.block.isShowPreDlg = 0;
             p.block.printTargetChoice = 2;
             p.block.watermark.flag = 9;
         },
         [](Parts& p) { p.block.isShowPreDlg = 0; }},
        {"reserved fields of the block are carried",
         [](Parts& p) { p.block.reserved2 = 5; },
         [](Parts& p) { p.block.reserved2 = 5; }},
        {"watermark",
         [](Parts& p)
         {
             std::ranges::fill(p.block.watermark.text, L'w');
             p.block.watermark.placement = 1;
             p.block.watermark.reserved[0] = 3;
         },
         [](Parts& p)
         {
             std::ranges::fill(p.block.watermark.text, L'w');
             p.block.watermark.text[127] = 0;
             p.block.watermark.placement = 1;
         }},
        {"empty watermark", [](Parts& p) { p.block.watermark = {}; }, kNothing},
    };
    return changes;
}

void CheckChanges(const std::vector<Change>& changes)
{
    const Profile profile = Parse(SampleProfile());
    const Parts defaults(BuildDevMode(profile));
    for (const Change& change : changes)
    {
        SCOPED_TRACE(change.name);
        Parts input = defaults;
        change.apply(input);
        Parts expected = defaults;
        change.expect(expected);
        const std::vector<std::byte> repaired = ValidateDevMode(profile, input.Join());
        EXPECT_TRUE(repaired == expected.Join());
        EXPECT_TRUE(ValidateDevMode(profile, repaired) == repaired) << "validating twice changes something";
    }
}

TEST(ValidateDevMode, RepairsPublicFields)
{
    CheckChanges(PublicChanges());
}

TEST(ValidateDevMode, RepairsPaperAndQuality)
{
    CheckChanges(PaperAndQualityChanges());
}

TEST(ValidateDevMode, RepairsPrivateFields)
{
    CheckChanges(PrivateChanges());
}

TEST(ValidateDevMode, TakesFinishingAndCompressionOnlyWhereOffered)
{
    nlohmann::json document = SampleProfile();
    document["private"]["locked"] = {"duplex"};
    document["private"]["features"] = {"nup"};
    const Profile profile = Parse(document);
    Parts input(BuildDevMode(profile));
    input.mode.dmColor = DMCOLOR_COLOR;
    input.mode.dmDuplex = DMDUP_SIMPLEX;
    input.block.compression = 3;
    input.block.isPrintAsImage = 0;
    wcscpy(input.block.punch, L"psk:None");
    const Parts output(ValidateDevMode(profile, input.Join()));
    EXPECT_EQ(output.mode.dmColor, DMCOLOR_COLOR);
    EXPECT_EQ(output.mode.dmDuplex, DMDUP_HORIZONTAL);
    EXPECT_EQ(output.block.compression, 3u);
    EXPECT_EQ(output.block.isPrintAsImage, 1);
    EXPECT_STREQ(output.block.punch, L"psk:LeftEdge");
}

TEST(ValidateDevMode, NeverReadsBeyondTheBytesWhateverTheySay)
{
    const Profile profile = Parse(SampleProfile());
    const std::vector<std::byte> defaults = BuildDevMode(profile);
    for (std::size_t size = 0; size <= defaults.size(); size += size < 240 ? 1 : 97)
    {
        for (const WORD claimedSize : std::initializer_list<WORD>{0, 70, 100, 219, 220, 0xFFFF})
        {
            for (const WORD claimedExtra : std::initializer_list<WORD>{0, 1111, 1112, 1122, 0xFFFF})
            {
                std::vector<std::byte> bytes(defaults.begin(), defaults.begin() + static_cast<std::ptrdiff_t>(size));
                if (size >= 72)
                {
                    std::memcpy(bytes.data() + offsetof(DEVMODEW, dmSize), &claimedSize, 2);
                    std::memcpy(bytes.data() + offsetof(DEVMODEW, dmDriverExtra), &claimedExtra, 2);
                }
                const GuardedBytes guarded(bytes);
                ASSERT_TRUE(ValidateDevMode(profile, {guarded.Data(), size}) == defaults)
                    << size << " bytes claiming " << claimedSize << " + " << claimedExtra;
            }
        }
    }
}

TEST(ValidateDevMode, UnderstandsShorterAndLongerPublicParts)
{
    const Profile profile = Parse(SampleProfile());
    Parts parts(BuildDevMode(profile));
    parts.mode.dmOrientation = DMORIENT_PORTRAIT;
    parts.mode.dmMediaType = 1;
    parts.block.pagesPerSheet = 2;
    for (const WORD size : std::initializer_list<WORD>{156, 228})
    {
        SCOPED_TRACE(size);
        std::vector<std::byte> bytes = parts.Join();
        const auto at = bytes.begin() + std::min<int>(size, 220);
        size < 220 ? bytes.erase(at, bytes.begin() + 220) : bytes.insert(at, 8, std::byte{0xEE});
        std::memcpy(bytes.data() + offsetof(DEVMODEW, dmSize), &size, sizeof(size));
        const Parts output(ValidateDevMode(profile, bytes));
        EXPECT_EQ(output.mode.dmOrientation, DMORIENT_PORTRAIT);
        EXPECT_EQ(output.mode.dmMediaType, size < 220 ? 2u : 1u);
        EXPECT_EQ(output.block.pagesPerSheet, 2u);
    }
}

} // namespace
} // namespace tsypr::service::test
