#include "service/device_mode.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

#include "service/private_block.h"
#include "service/untrusted_devmode.h"
#include "service/wide_text.h"

namespace tsypr::service
{

namespace
{

constexpr WORD kSpecVersion = DM_SPECVERSION;

void SetPaper(const Profile& profile, DEVMODEW& mode)
{
    const PublicDefaults& settings = profile.deviceMode;
    mode.dmFields |= DM_PAPERSIZE | DM_FORMNAME;
    mode.dmPaperSize = static_cast<short>(settings.paper);
    const Paper* paper = profile.FindPaper(settings.paper);
    if (paper == nullptr)
    {
        return;
    }
    if (settings.paper == kUserPaper)
    {
        mode.dmFields |= DM_PAPERLENGTH | DM_PAPERWIDTH;
        mode.dmPaperWidth = paper->width;
        mode.dmPaperLength = paper->height;
    }
    FillField(mode.dmFormName, settings.formName.empty() ? paper->name : settings.formName);
}

void SetPrintQuality(const PublicDefaults& settings, DEVMODEW& mode)
{
    mode.dmFields |= DM_PRINTQUALITY;
    if (settings.quality)
    {
        mode.dmPrintQuality = static_cast<short>(*settings.quality);
    }
    else if (settings.resolution)
    {
        mode.dmFields |= DM_YRESOLUTION;
        mode.dmPrintQuality = settings.resolution->x;
        mode.dmYResolution = settings.resolution->y;
    }
}

// Sets a field and its bit when the printer has the setting.
template <class Setting, class Field>
void SetOptional(const Setting& setting, DWORD bit, Field& field, DEVMODEW& mode)
{
    if (setting)
    {
        mode.dmFields |= bit;
        field = static_cast<Field>(*setting);
    }
}

DEVMODEW DefaultPublicPart(const Profile& profile)
{
    const PublicDefaults& settings = profile.deviceMode;
    DEVMODEW mode{};
    FillField(mode.dmDeviceName, profile.name);
    mode.dmSpecVersion = kSpecVersion;
    mode.dmDriverVersion = kDriverVersion;
    mode.dmSize = kPublicDevModeSize;
    mode.dmDriverExtra = static_cast<WORD>(settings.leadingExtra + kPrivateBlockSize);
    mode.dmFields = DM_COPIES;
    mode.dmCopies = settings.copies;
    mode.dmOrientation = DMORIENT_PORTRAIT;
    mode.dmScale = 100;
    mode.dmColor = DMCOLOR_MONOCHROME;
    mode.dmDuplex = DMDUP_SIMPLEX;
    SetOptional(settings.orientation, DM_ORIENTATION, mode.dmOrientation, mode);
    SetOptional(settings.source, DM_DEFAULTSOURCE, mode.dmDefaultSource, mode);
    SetOptional(settings.mediaType, DM_MEDIATYPE, mode.dmMediaType, mode);
    SetOptional(settings.collate, DM_COLLATE, mode.dmCollate, mode);
    SetOptional(settings.color, DM_COLOR, mode.dmColor, mode);
    SetOptional(settings.duplex, DM_DUPLEX, mode.dmDuplex, mode);
    SetOptional(settings.scale, DM_SCALE, mode.dmScale, mode);
    SetPaper(profile, mode);
    SetPrintQuality(settings, mode);
    return mode;
}

void SetDefaultWatermark(WatermarkBlock& watermark)
{
    watermark.font.lfHeight = 96;
    watermark.font.lfWeight = FW_BOLD;
    FillField(watermark.font.lfFaceName, "Times New Roman");
    watermark.color = RGB(255, 0, 0);
    FillField(watermark.text, "No Watermark");
}

PrivateBlock DefaultPrivatePart(const Profile& profile)
{
    const PrivateDefaults& settings = profile.privateSettings;
    PrivateBlock block{};
    block.signature = kPrivateSignature;
    block.compression = settings.compression;
    FillField(block.printerName, profile.name);
    block.printTargetChoice = settings.printTargetChoice;
    block.isPrintAsImage = settings.printAsImage ? 1 : 0;
    block.isShowPreDlg = settings.showPreDialog ? 1 : 0;
    block.featureBitmap = settings.features;
    block.pagesPerSheet = settings.pagesPerSheet;
    FillField(block.nupLayout, settings.nupLayout);
    FillField(block.staple, settings.staple);
    FillField(block.punch, settings.punch);
    block.lockedSettings = settings.locked;
    SetDefaultWatermark(block.watermark);
    return block;
}

// Public part, zeroed leading bytes and private block as one run of bytes.
std::vector<std::byte> Assemble(const DEVMODEW& mode, const PrivateBlock& block)
{
    std::vector<std::byte> bytes(std::size_t{mode.dmSize} + mode.dmDriverExtra);
    std::memcpy(bytes.data(), &mode, sizeof(mode));
    std::memcpy(bytes.data() + bytes.size() - sizeof(block), &block, sizeof(block));
    return bytes;
}

template <class Item>
bool HasId(const std::vector<Item>& items, DWORD id)
{
    return std::ranges::any_of(items, [id](const Item& item) { return item.id == id; });
}

template <class Value, class Number>
bool Lists(const std::vector<Value>& values, Number number)
{
    return std::ranges::any_of(values, [number](Value value) { return static_cast<Number>(value) == number; });
}

void TakePaper(const Profile& profile, const UntrustedDevMode& input, DEVMODEW& mode)
{
    short requested = 0;
    if (!input.Get(DM_PAPERSIZE, &DEVMODEW::dmPaperSize, requested))
    {
        return;
    }
    const auto id = static_cast<std::uint16_t>(requested);
    const Paper* paper = profile.FindPaper(id);
    short width = paper != nullptr ? paper->width : short{0};
    short length = paper != nullptr ? paper->height : short{0};
    const bool hasSize = input.Get(DM_PAPERWIDTH, &DEVMODEW::dmPaperWidth, width) &&
                         input.Get(DM_PAPERLENGTH, &DEVMODEW::dmPaperLength, length);
    const bool user = id == kUserPaper && profile.customPaper;
    if (paper == nullptr && !(user && hasSize))
    {
        return;
    }
    mode.dmPaperSize = requested;
    mode.dmFields &= ~static_cast<DWORD>(DM_PAPERWIDTH | DM_PAPERLENGTH);
    mode.dmPaperWidth = 0;
    mode.dmPaperLength = 0;
    if (user)
    {
        const CustomPaper& limits = *profile.customPaper;
        mode.dmFields |= DM_PAPERWIDTH | DM_PAPERLENGTH;
        mode.dmPaperWidth = std::clamp<short>(hasSize ? width : paper->width, limits.minWidth, limits.maxWidth);
        mode.dmPaperLength = std::clamp<short>(hasSize ? length : paper->height, limits.minHeight, limits.maxHeight);
    }
    if (paper == nullptr)
    {
        mode.dmFields &= ~static_cast<DWORD>(DM_FORMNAME);
        FillField(mode.dmFormName, "");
        return;
    }
    const bool isDefault = id == profile.deviceMode.paper && !profile.deviceMode.formName.empty();
    FillField(mode.dmFormName, isDefault ? profile.deviceMode.formName : paper->name);
}

void TakePrintQuality(const Profile& profile, const UntrustedDevMode& input, DEVMODEW& mode)
{
    short quality = 0;
    if (!input.Get(DM_PRINTQUALITY, &DEVMODEW::dmPrintQuality, quality))
    {
        return;
    }
    if (quality < 0)
    {
        if (Lists(profile.qualityLevels, quality))
        {
            mode.dmPrintQuality = quality;
            mode.dmYResolution = 0;
            mode.dmFields &= ~static_cast<DWORD>(DM_YRESOLUTION);
        }
        return;
    }
    short y = 0;
    const bool hasY = input.Get(DM_YRESOLUTION, &DEVMODEW::dmYResolution, y);
    const auto found = std::ranges::find_if(profile.resolutions,
                                            [&](const Resolution& resolution)
                                            { return resolution.x == quality && (!hasY || resolution.y == y); });
    if (found != profile.resolutions.end())
    {
        mode.dmPrintQuality = found->x;
        mode.dmYResolution = found->y;
        mode.dmFields |= DM_YRESOLUTION;
    }
}

// Takes a field over when the printer has the setting and `accept` agrees with the value.
template <class Field, class Accept>
void Take(const UntrustedDevMode& input, DWORD bit, Field DEVMODEW::*member, DEVMODEW& mode, Accept&& accept)
{
    Field value{};
    if ((mode.dmFields & bit) != 0 && input.Get(bit, member, value) && accept(value))
    {
        mode.*member = value;
    }
}

void TakePublicPart(const Profile& profile, const UntrustedDevMode& input, DEVMODEW& mode)
{
    Take(input,
         DM_ORIENTATION,
         &DEVMODEW::dmOrientation,
         mode,
         [](short value) { return value == DMORIENT_PORTRAIT || value == DMORIENT_LANDSCAPE; });
    Take(input,
         DM_DEFAULTSOURCE,
         &DEVMODEW::dmDefaultSource,
         mode,
         [&](short value) { return HasId(profile.bins, static_cast<std::uint16_t>(value)); });
    Take(input,
         DM_MEDIATYPE,
         &DEVMODEW::dmMediaType,
         mode,
         [&](DWORD value) { return HasId(profile.mediaTypes, value); });
    Take(input,
         DM_COLLATE,
         &DEVMODEW::dmCollate,
         mode,
         [](short value) { return value == DMCOLLATE_FALSE || value == DMCOLLATE_TRUE; });
    Take(input, DM_SCALE, &DEVMODEW::dmScale, mode, [](short value) { return value >= 1 && value <= 1000; });
    Take(input,
         DM_COLOR,
         &DEVMODEW::dmColor,
         mode,
         [&](short value) {
             return !profile.IsLocked(LockedSetting::Color) && (value == DMCOLOR_MONOCHROME || value == DMCOLOR_COLOR);
         });
    Take(input,
         DM_DUPLEX,
         &DEVMODEW::dmDuplex,
         mode,
         [&](short value) { return !profile.IsLocked(LockedSetting::Duplex) && Lists(profile.duplex, value); });
    short copies = 0;
    if (input.Get(DM_COPIES, &DEVMODEW::dmCopies, copies))
    {
        mode.dmCopies = std::clamp<short>(copies, 1, profile.maxCopies);
    }
    TakePaper(profile, input, mode);
    TakePrintQuality(profile, input, mode);
}

void TakeKeyword(std::span<WCHAR> field, std::span<const WCHAR> input, const std::vector<std::string>& offered)
{
    const std::wstring_view text(input.data(), wcsnlen(input.data(), input.size() - 1));
    for (const std::string& keyword : offered)
    {
        if (WideFromUtf8(keyword) == text)
        {
            FillField(field, keyword);
            return;
        }
    }
}

void TakeWatermark(const WatermarkBlock& input, WatermarkBlock& watermark)
{
    if (input.text[0] == 0)
    {
        return;
    }
    watermark = input;
    watermark.font.lfFaceName[std::size(watermark.font.lfFaceName) - 1] = 0;
    watermark.text[std::size(watermark.text) - 1] = 0;
    std::ranges::fill(watermark.reserved, std::uint8_t{0});
    watermark.placement = watermark.placement == 1 ? 1 : 0;
    watermark.flag = watermark.flag == 1 ? 1 : 0;
}

void TakePrivatePart(const Profile& profile, const PrivateBlock& input, PrivateBlock& block)
{
    if (!profile.IsLocked(LockedSetting::CompressionLevel) && input.compression <= 3)
    {
        block.compression = input.compression;
    }
    if (input.printerName[0] != 0)
    {
        std::ranges::copy(input.printerName, std::begin(block.printerName));
        block.printerName[std::size(block.printerName) - 1] = 0;
    }
    if (input.printTargetChoice <= 1)
    {
        block.printTargetChoice = input.printTargetChoice;
    }
    if (profile.Has(Feature::PrintAsImage))
    {
        block.isPrintAsImage = input.isPrintAsImage != 0 ? 1 : 0;
    }
    if (profile.Has(Feature::PopupPreDialog))
    {
        block.isShowPreDlg = input.isShowPreDlg != 0 ? 1 : 0;
    }
    if (profile.Has(Feature::Nup) && profile.nup)
    {
        if (Lists(profile.nup->pagesPerSheet, input.pagesPerSheet))
        {
            block.pagesPerSheet = input.pagesPerSheet;
        }
        TakeKeyword(block.nupLayout, input.nupLayout, profile.nup->directions);
    }
    if (profile.Has(Feature::Finishing))
    {
        TakeKeyword(block.staple, input.staple, profile.staple);
        TakeKeyword(block.punch, input.punch, profile.punch);
    }
    block.reserved2 = input.reserved2;
    block.reserved3 = input.reserved3;
    TakeWatermark(input.watermark, block.watermark);
}

} // namespace

std::vector<std::byte> BuildDevMode(const Profile& profile)
{
    return Assemble(DefaultPublicPart(profile), DefaultPrivatePart(profile));
}

DWORD SupportedFields(const Profile& profile)
{
    DWORD fields = DefaultPublicPart(profile).dmFields;
    if (!profile.resolutions.empty())
    {
        fields |= DM_YRESOLUTION;
    }
    if (profile.customPaper)
    {
        fields |= DM_PAPERLENGTH | DM_PAPERWIDTH;
    }
    return fields;
}

std::vector<std::byte> ValidateDevMode(const Profile& profile, std::span<const std::byte> input)
{
    const UntrustedDevMode untrusted(input);
    DEVMODEW mode = DefaultPublicPart(profile);
    TakePublicPart(profile, untrusted, mode);
    PrivateBlock block = DefaultPrivatePart(profile);
    PrivateBlock given{};
    const bool hasPrivate = untrusted.GetPrivate(given);
    if (hasPrivate)
    {
        TakePrivatePart(profile, given, block);
    }
    std::vector<std::byte> bytes = Assemble(mode, block);
    const std::span<const std::byte> extra = untrusted.Extra();
    if (hasPrivate && extra.size() == mode.dmDriverExtra)
    {
        std::ranges::copy(extra.first(extra.size() - sizeof(block)), bytes.begin() + mode.dmSize);
    }
    return bytes;
}

} // namespace tsypr::service
