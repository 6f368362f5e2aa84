// Every setting of every printer from device modes to print tickets and back, through the installed driver's provider,
// which is used as Windows' print ticket services use it.
#include <algorithm>
#include <functional>

#include "remote/private_devmode.h"
#include "tests/service/build_printers.h"
#include "tests/spooler/installed_product.h"
#include "tests/support/print_schema_checker.h"
#include "tools/printctl/text.h"
#include "tools/printctl/ticket_provider.h"

namespace tsypr::spooler_tests
{
namespace
{

using printctl::DevModeBuffer;
using printctl::Wide;
using service::Feature;
using service::LockedSetting;
using service::Profile;
using test::PrintSchemaKind;

struct Change
{
    std::string name;
    std::function<void(DEVMODEW&, PrivateDevMode&)> apply;
    bool isLocked; // stays as it is
};

void SetKeyword(WideField<kKeywordChars>& field, const std::string& keyword)
{
    field = {};
    field.Write(Wide(keyword).c_str());
}

// For each value a change of a device mode `dm` or its private block.
#define ADD(name, values, isLocked, ...)                                                                               \
    for (const auto& value : values)                                                                                   \
    {                                                                                                                  \
        const auto apply = [=]([[maybe_unused]] DEVMODEW& dm, [[maybe_unused]] PrivateDevMode& block)                  \
        { __VA_ARGS__; };                                                                                              \
        changes.push_back({name " " + std::to_string(changes.size()), apply, isLocked});                               \
    }

void AddOwnSettings(const Profile& profile, std::vector<Change>& changes)
{
    const service::Nup nup = profile.Has(Feature::Nup) ? *profile.nup : service::Nup{};
    ADD("pages per sheet", nup.pagesPerSheet, false, block.pagesPerSheet = value);
    ADD("direction", nup.directions, false, SetKeyword(block.nupLayout, value));
    if (profile.Has(Feature::Finishing))
    {
        ADD("staple", profile.staple, false, SetKeyword(block.staple, value));
        ADD("punch", profile.punch, false, SetKeyword(block.punch, value));
    }
    const std::vector<uint8_t> one = {1};
    ADD("locks", one, true, block.lockedSettings = block.lockedSettings ^ value);
    ADD("target", one, false, block.printTargetChoice = value); // what no ticket can say
    ADD("switches", one, false, block.isPrintAsImage = block.isShowPreDlg = value);
    ADD("watermark", one, false, block.watermark[100] = value);
}

// Everything that the printer offers, one by one.
std::vector<Change> Changes(const Profile& profile)
{
    std::vector<Change> changes;
    const auto both = [](bool isOffered) { return isOffered ? std::vector<short>{1, 2} : std::vector<short>(); };
    const auto size = [](DEVMODEW& dm, short width, short length)
    {
        dm.dmPaperSize = DMPAPER_USER;
        dm.dmFields |= DM_PAPERWIDTH | DM_PAPERLENGTH;
        dm.dmPaperWidth = width;
        dm.dmPaperLength = length;
    };
    const auto quality = [](DEVMODEW& dm, short x, short y)
    {
        dm.dmFields = y != 0 ? dm.dmFields | DM_YRESOLUTION : dm.dmFields & ~DWORD{DM_YRESOLUTION};
        dm.dmPrintQuality = x;
        dm.dmYResolution = y;
    };
    std::vector<service::Paper> listed = profile.papers;
    std::erase_if(listed, [](const service::Paper& paper) { return paper.id == service::kUserPaper; });
    std::vector<service::CustomPaper> custom;
    custom.assign(profile.customPaper ? 1 : 0, profile.customPaper.value_or(service::CustomPaper{}));
    ADD("paper", listed, false, dm.dmPaperSize = static_cast<short>(value.id));
    std::vector<short> unlisted = {DMPAPER_A3, 32000}; // gives the printer's own paper
    std::erase_if(unlisted, [&](short id) { return profile.FindPaper(static_cast<uint16_t>(id)) != nullptr; });
    ADD("unlisted paper", unlisted, true, dm.dmPaperSize = value);
    ADD("narrow and long", custom, false, size(dm, value.minWidth, value.maxHeight));
    ADD("wide and short", custom, false, size(dm, value.maxWidth, value.minHeight));
    ADD("bin", profile.bins, false, dm.dmDefaultSource = static_cast<short>(value.id));
    ADD("media type", profile.mediaTypes, false, dm.dmMediaType = value.id);
    ADD("orientation", both(profile.landscapeRotation != 0), false, dm.dmOrientation = value);
    ADD("resolution", profile.resolutions, false, quality(dm, value.x, value.y));
    ADD("quality", profile.qualityLevels, false, quality(dm, static_cast<short>(value), 0));
    ADD("duplex", profile.duplex, profile.IsLocked(LockedSetting::Duplex), dm.dmDuplex = static_cast<short>(value));
    ADD("colour", both(profile.color), profile.IsLocked(LockedSetting::Color), dm.dmColor = value);
    ADD("copies", (std::vector<short>{1, 2, profile.maxCopies}), false, dm.dmCopies = value);
    ADD("collation", both(profile.collation), false, dm.dmCollate = static_cast<short>(value - 1));
    ADD("scale", both(profile.deviceMode.scale.has_value()), false, dm.dmScale = static_cast<short>(50 * value));
    AddOwnSettings(profile, changes);
    return changes;
}

// Without what stands behind the keywords' ends.
std::string BytesOf(DevModeBuffer mode)
{
    PrivateDevMode* block = GetPrivateDevMode(mode.Get());
    for (auto* field : {&block->nupLayout, &block->staple, &block->punch})
    {
        const auto text = field->Read();
        *field = {};
        field->Write(text.text);
    }
    return {reinterpret_cast<const char*>(mode.Get()), DevModeTotalSize(mode.Get())};
}

// The device mode that must come back.
DevModeBuffer Expected(const Profile& profile, const DevModeBuffer& input, const DevModeBuffer& defaults)
{
    DevModeBuffer expected = input;
    DEVMODEW& mode = *expected.Get();
    PrivateDevMode* block = GetPrivateDevMode(&mode);
    mode.dmScale = defaults.Get()->dmScale; // the virtual printer does not scale
    if (mode.dmPaperSize != defaults.Get()->dmPaperSize)
    {
        // The paper has a name, which no application needs to know.
        std::ranges::fill(mode.dmFormName, L'\0');
        Wide(profile.FindPaper(static_cast<uint16_t>(mode.dmPaperSize))->name).copy(mode.dmFormName, CCHFORMNAME - 1);
    }
    if (!profile.Has(Feature::Nup))
    {
        block->pagesPerSheet = 0; // a ticket without N-up says none
        block->nupLayout = {};
    }
    if (!profile.Has(Feature::Finishing))
    {
        block->staple = block->punch = {};
    }
    return expected;
}

using RoundTrips = InstalledProduct;

TEST_F(RoundTrips, LoseNothingForAnySettingOfAnyPrinter)
{
    for (const Profile& profile : service::test::BuildPrinters())
    {
        const std::wstring name = Wide(profile.name);
        const auto printer = printctl::OpenPrinterByName(name);
        const printctl::TicketProvider provider(printer, name);
        const std::string capabilities = provider.Capabilities(std::nullopt);
        EXPECT_EQ(test::CheckPrintSchema(capabilities, PrintSchemaKind::Capabilities), std::vector<std::string>());
        const DevModeBuffer defaults = DefaultDevMode(printer, name);
        for (const Change& change : Changes(profile))
        {
            SCOPED_TRACE(profile.name + ", " + change.name);
            DevModeBuffer asked = defaults;
            change.apply(*asked.Get(), *GetPrivateDevMode(asked.Get()));
            const bool isOther = BytesOf(asked) != BytesOf(defaults);
            const DevModeBuffer input = MergeDevMode(printer, name, asked);
            EXPECT_EQ(isOther && !change.isLocked, BytesOf(input) != BytesOf(defaults));

            const std::string ticket = provider.FromDevMode(input);
            EXPECT_EQ(test::CheckPrintSchema(ticket, PrintSchemaKind::Ticket), std::vector<std::string>());
            bool isConflictResolved = true;
            const DevModeBuffer output = provider.ToDevMode(ticket, isConflictResolved);
            EXPECT_FALSE(isConflictResolved);
            EXPECT_TRUE(BytesOf(output) == BytesOf(Expected(profile, input, defaults))) << ticket;
            EXPECT_EQ(ticket.find("psk:PageScaling\""), std::string::npos);
        }
    }
}

} // namespace
} // namespace tsypr::spooler_tests
