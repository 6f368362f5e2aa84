#include "service/ticket/setting_table.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>
#include <string>
#include <utility>

#include "service/ticket/mode_parts.h"
#include "service/ticket/setting_options.h"
#include "service/wide_text.h"

namespace tsypr::service
{

namespace
{

constexpr std::int64_t kLargestScale = 1000;
constexpr std::int64_t kFullSize = 100;
constexpr std::size_t kNupRow = 9;

template <auto Member, DWORD Bit>
std::int64_t GetField(const Profile& /*profile*/, const ModeParts& parts)
{
    return parts.mode.*Member;
}

// The paper number has the upper half of the 16 bits too.
template <auto Member, DWORD Bit>
std::int64_t GetUnsigned(const Profile& /*profile*/, const ModeParts& parts)
{
    return static_cast<std::uint16_t>(parts.mode.*Member);
}

// A field that the printer does not have stays unset.
template <auto Member, DWORD Bit>
void PutField(const Profile& /*profile*/, std::int64_t value, ModeParts& parts)
{
    if ((parts.mode.dmFields & Bit) != 0)
    {
        parts.mode.*Member = static_cast<std::decay_t<decltype(parts.mode.*Member)>>(value);
    }
}

void PutPaper(const Profile& /*profile*/, std::int64_t value, ModeParts& parts)
{
    parts.mode.dmPaperSize = static_cast<short>(value);
    parts.mode.dmFields |= DM_PAPERSIZE;
}

std::int64_t GetPrintQuality(const Profile& /*profile*/, const ModeParts& parts)
{
    const short quality = parts.mode.dmPrintQuality;
    return quality < 0 ? quality : PackResolution(quality, parts.mode.dmYResolution);
}

void PutPrintQuality(const Profile& /*profile*/, std::int64_t value, ModeParts& parts)
{
    const bool isLevel = value < 0;
    parts.mode.dmPrintQuality = static_cast<short>(isLevel ? value : value / 0x10000);
    parts.mode.dmYResolution = static_cast<short>(isLevel ? 0 : value % 0x10000);
    parts.mode.dmFields |= DM_PRINTQUALITY | DM_YRESOLUTION;
}

std::int64_t GetScaling(const Profile& /*profile*/, const ModeParts& parts)
{
    return parts.mode.dmScale == kFullSize ? kUnscaled : kScaled;
}

// The number of a scaled page is a parameter.
void PutScaling(const Profile& /*profile*/, std::int64_t value, ModeParts& parts)
{
    if (value == kUnscaled)
    {
        parts.mode.dmScale = static_cast<short>(kFullSize);
    }
}

std::int64_t GetPagesPerSheet(const Profile& /*profile*/, const ModeParts& parts)
{
    return parts.block.pagesPerSheet;
}

void PutPagesPerSheet(const Profile& /*profile*/, std::int64_t value, ModeParts& parts)
{
    parts.block.pagesPerSheet = static_cast<std::uint32_t>(value);
}

std::int64_t FindKeyword(const std::vector<std::string>& keywords, const WCHAR* field)
{
    const auto found =
        std::ranges::find_if(keywords, [&](const std::string& keyword) { return WideFromUtf8(keyword) == field; });
    return found - keywords.begin();
}

const std::vector<std::string>& Directions(const Profile& profile)
{
    static const std::vector<std::string> kNone;
    return profile.nup ? profile.nup->directions : kNone;
}

std::int64_t GetDirection(const Profile& profile, const ModeParts& parts)
{
    return FindKeyword(Directions(profile), parts.block.nupLayout);
}

void PutDirection(const Profile& profile, std::int64_t value, ModeParts& parts)
{
    FillField(parts.block.nupLayout, Directions(profile)[static_cast<std::size_t>(value)]);
}

template <auto List, auto Field>
std::int64_t GetKeyword(const Profile& profile, const ModeParts& parts)
{
    return FindKeyword(profile.*List, parts.block.*Field);
}

template <auto List, auto Field>
void PutKeyword(const Profile& profile, std::int64_t value, ModeParts& parts)
{
    FillField(parts.block.*Field, (profile.*List)[static_cast<std::size_t>(value)]);
}

template <LockedSetting Setting>
bool IsLocked(const Profile& profile)
{
    return profile.IsLocked(Setting);
}

std::optional<ParameterRange> CopiesRange(const Profile& profile)
{
    return ParameterRange{1, profile.maxCopies};
}

std::int64_t GetCopies(const Profile& /*profile*/, const ModeParts& parts)
{
    return parts.mode.dmCopies;
}

void PutCopies(std::int64_t value, ModeParts& parts)
{
    parts.mode.dmCopies = static_cast<short>(value);
}

// The device mode has one number of copies for what tickets say in three scopes, which multiply.
std::int64_t GetOne(const Profile& /*profile*/, const ModeParts& /*parts*/)
{
    return 1;
}

void MultiplyCopies(std::int64_t value, ModeParts& parts)
{
    const std::int64_t copies = parts.mode.dmCopies * value;
    parts.mode.dmCopies = static_cast<short>(std::min<std::int64_t>(copies, std::numeric_limits<short>::max()));
}

template <auto Smallest, auto Largest>
std::optional<ParameterRange> CustomRange(const Profile& profile)
{
    if (!profile.customPaper)
    {
        return std::nullopt;
    }
    return ParameterRange{(*profile.customPaper).*Smallest * kMicronsPerTenth,
                          (*profile.customPaper).*Largest * kMicronsPerTenth};
}

// The size that a user-defined paper starts with is its own in the list, or that of the usual paper.
template <auto Field, auto Size>
std::int64_t GetCustomSize(const Profile& profile, const ModeParts& parts)
{
    if (static_cast<std::uint16_t>(parts.mode.dmPaperSize) == kUserPaper)
    {
        return parts.mode.*Field * kMicronsPerTenth;
    }
    const Paper* listed = profile.FindPaper(kUserPaper);
    const Paper* paper = listed != nullptr ? listed : profile.FindPaper(profile.deviceMode.paper);
    return paper != nullptr ? paper->*Size * kMicronsPerTenth : 0;
}

template <auto Field, DWORD Bit>
void PutCustomSize(std::int64_t value, ModeParts& parts)
{
    parts.mode.dmFields |= Bit;
    parts.mode.*Field = static_cast<short>((value + kMicronsPerTenth / 2) / kMicronsPerTenth);
}

std::optional<ParameterRange> ScaleRange(const Profile& profile)
{
    return profile.deviceMode.scale ? std::optional(ParameterRange{1, kLargestScale}) : std::nullopt;
}

std::int64_t GetScale(const Profile& /*profile*/, const ModeParts& parts)
{
    return parts.mode.dmScale;
}

void PutScale(std::int64_t value, ModeParts& parts)
{
    parts.mode.dmScale = static_cast<short>(value);
}

constexpr FeatureRow kNoFeature{"", nullptr, 0};
constexpr std::int64_t kSizeTolerance = 1000; // microns

// clang-format off
constexpr SettingRow kSettings[] = {
    {{{"PageMediaSize", MediaSizeOptions, kSizeTolerance}, kNoFeature, kNoFeature},
     GetUnsigned<&DEVMODEW::dmPaperSize, DM_PAPERSIZE>, PutPaper, nullptr, kNoParent},
    {{{"PageOrientation", OrientationOptions, 0}, kNoFeature, kNoFeature},
     GetField<&DEVMODEW::dmOrientation, DM_ORIENTATION>, PutField<&DEVMODEW::dmOrientation, DM_ORIENTATION>,
     nullptr, kNoParent},
    {{{"JobDuplexAllDocumentsContiguously", DuplexOptions, 0}, {"DocumentDuplex", DuplexOptions, 0}, kNoFeature},
     GetField<&DEVMODEW::dmDuplex, DM_DUPLEX>, PutField<&DEVMODEW::dmDuplex, DM_DUPLEX>,
     IsLocked<LockedSetting::Duplex>, kNoParent},
    {{{"PageOutputColor", ColorOptions, 0}, kNoFeature, kNoFeature},
     GetField<&DEVMODEW::dmColor, DM_COLOR>, PutField<&DEVMODEW::dmColor, DM_COLOR>,
     IsLocked<LockedSetting::Color>, kNoParent},
    {{{"PageOutputQuality", QualityOptions, 0}, {"PageResolution", ResolutionOptions, 0}, kNoFeature},
     GetPrintQuality, PutPrintQuality, nullptr, kNoParent},
    {{{"JobInputBin", InputBinOptions, 0}, {"DocumentInputBin", InputBinOptions, 0},
      {"PageInputBin", InputBinOptions, 0}},
     GetUnsigned<&DEVMODEW::dmDefaultSource, DM_DEFAULTSOURCE>,
     PutField<&DEVMODEW::dmDefaultSource, DM_DEFAULTSOURCE>, nullptr, kNoParent},
    {{{"PageMediaType", MediaTypeOptions, 0}, kNoFeature, kNoFeature},
     GetField<&DEVMODEW::dmMediaType, DM_MEDIATYPE>, PutField<&DEVMODEW::dmMediaType, DM_MEDIATYPE>,
     nullptr, kNoParent},
    {{{"DocumentCollate", CollateOptions, 0}, {"JobCollateAllDocuments", CollateOptions, 0}, kNoFeature},
     GetField<&DEVMODEW::dmCollate, DM_COLLATE>, PutField<&DEVMODEW::dmCollate, DM_COLLATE>, nullptr, kNoParent},
    {{{"PageScaling", ScalingOptions, 0}, kNoFeature, kNoFeature}, GetScaling, PutScaling, nullptr, kNoParent},
    {{{"JobNUpAllDocumentsContiguously", NupOptions, 0}, {"DocumentNUp", NupOptions, 0}, kNoFeature},
     GetPagesPerSheet, PutPagesPerSheet, nullptr, kNoParent},
    {{{"PresentationDirection", DirectionOptions, 0}, kNoFeature, kNoFeature},
     GetDirection, PutDirection, nullptr, kNupRow},
    {{{"JobStapleAllDocuments", StapleOptions, 0}, {"DocumentStaple", StapleOptions, 0}, kNoFeature},
     GetKeyword<&Profile::staple, &PrivateBlock::staple>, PutKeyword<&Profile::staple, &PrivateBlock::staple>,
     nullptr, kNoParent},
    {{{"JobHolePunch", PunchOptions, 0}, {"DocumentHolePunch", PunchOptions, 0}, kNoFeature},
     GetKeyword<&Profile::punch, &PrivateBlock::punch>, PutKeyword<&Profile::punch, &PrivateBlock::punch>,
     nullptr, kNoParent},
};
static_assert(kSettings[kNupRow].features[0].name == "JobNUpAllDocumentsContiguously");

constexpr ParameterRow kParameters[] = {
    {"JobCopiesAllDocuments", "copies", true, CopiesRange, GetCopies, PutCopies},
    {"DocumentCopiesAllPages", "copies", true, CopiesRange, GetOne, MultiplyCopies},
    {"PageCopies", "copies", true, CopiesRange, GetOne, MultiplyCopies},
    {"PageMediaSizeMediaSizeWidth", "microns", false, CustomRange<&CustomPaper::minWidth, &CustomPaper::maxWidth>,
     GetCustomSize<&DEVMODEW::dmPaperWidth, &Paper::width>, PutCustomSize<&DEVMODEW::dmPaperWidth, DM_PAPERWIDTH>},
    {"PageMediaSizeMediaSizeHeight", "microns", false, CustomRange<&CustomPaper::minHeight, &CustomPaper::maxHeight>,
     GetCustomSize<&DEVMODEW::dmPaperLength, &Paper::height>, PutCustomSize<&DEVMODEW::dmPaperLength, DM_PAPERLENGTH>},
    {"PageScalingScale", "percent", false, ScaleRange, GetScale, PutScale},
};
// clang-format on

constexpr std::pair<std::string_view, std::string_view> kClosest[] = {{"Grayscale", "Monochrome"},
                                                                      {"ReverseLandscape", "Landscape"},
                                                                      {"ReversePortrait", "Portrait"},
                                                                      {"Photographic", "High"},
                                                                      {"Text", "Normal"},
                                                                      {"Fax", "Draft"}};

} // namespace

std::span<const SettingRow> SettingRows()
{
    return kSettings;
}

std::span<const ParameterRow> ParameterRows()
{
    return kParameters;
}

std::string_view ClosestOption(std::string_view name)
{
    const auto* found = std::ranges::find(kClosest, name, &std::pair<std::string_view, std::string_view>::first);
    return found == std::end(kClosest) ? std::string_view() : found->second;
}

} // namespace tsypr::service
