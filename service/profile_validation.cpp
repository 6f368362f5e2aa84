#include "service/profile_validation.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "service/json_reader.h"
#include "service/text.h"

namespace tsypr::service
{

namespace
{

constexpr std::array<std::string_view, 8> kDirections = {"psk:RightBottom",
                                                         "psk:BottomRight",
                                                         "psk:LeftBottom",
                                                         "psk:BottomLeft",
                                                         "psk:RightTop",
                                                         "psk:TopRight",
                                                         "psk:LeftTop",
                                                         "psk:TopLeft"};
constexpr std::array<std::string_view, 10> kStaples = {"psk:None",
                                                       "psk:StapleTopLeft",
                                                       "psk:StapleTopRight",
                                                       "psk:StapleDualTop",
                                                       "psk:StapleDualLeft",
                                                       "psk:StapleDualRight",
                                                       "psk:StapleBottomLeft",
                                                       "psk:StapleBottomRight",
                                                       "psk:StapleDualBottom",
                                                       "psk:SaddleStitch"};
constexpr std::array<std::string_view, 5> kPunches = {
    "psk:None", "psk:BottomEdge", "psk:LeftEdge", "psk:RightEdge", "psk:TopEdge"};

std::string At(std::string_view list, std::size_t index, std::string_view field = "")
{
    std::string path = std::string(list) + "[" + std::to_string(index) + "]";
    return field.empty() ? path : path.append(".").append(field);
}

template <class List, class Value>
bool Contains(const List& list, const Value& value)
{
    return std::ranges::find(list, value) != std::ranges::end(list);
}

template <class Item>
bool ContainsId(const std::vector<Item>& items, std::uint32_t id)
{
    return std::ranges::any_of(items, [id](const Item& item) { return item.id == id; });
}

bool IsVendorKeyword(std::string_view keyword)
{
    return keyword.starts_with("ns0000:");
}

template <class Item>
void CheckItems(const std::vector<Item>& items, std::string_view list, const Profile& profile, ProblemList& problems)
{
    for (std::size_t i = 0; i < items.size(); ++i)
    {
        const auto earlier = std::ranges::find(items, items[i].id, &Item::id);
        if (earlier != items.begin() + static_cast<std::ptrdiff_t>(i))
        {
            problems.Add(At(list, i, "id"), "is used twice");
        }
        if (IsVendorKeyword(items[i].keyword) && profile.vendorNamespace.empty())
        {
            problems.Add(At(list, i, "keyword"), "needs vendorNamespace");
        }
    }
}

template <class Known>
void CheckKeywords(const std::vector<std::string>& keywords,
                   std::string_view list,
                   const Known& known,
                   ProblemList& problems)
{
    for (std::size_t i = 0; i < keywords.size(); ++i)
    {
        if (!Contains(known, keywords[i]))
        {
            problems.Add(At(list, i), "is not a keyword of this list");
        }
    }
}

void CheckText(const Profile& profile, ProblemList& problems)
{
    if (profile.name.find(',') != std::string::npos)
    {
        problems.Add("name", "must not hold a comma: sessions cut printer names there");
    }
    if (profile.vendorNamespace.find_first_of(" <>\"") != std::string::npos)
    {
        problems.Add("vendorNamespace", "must be a URI");
    }
}

// False for limits that contradict themselves.
bool CheckCustomLimits(const CustomPaper& custom, ProblemList& problems)
{
    if (custom.minWidth > custom.maxWidth)
    {
        problems.Add("customPaper.minWidth", "must not be larger than maxWidth");
        return false;
    }
    if (custom.minHeight > custom.maxHeight)
    {
        problems.Add("customPaper.minHeight", "must not be larger than maxHeight");
        return false;
    }
    return true;
}

void CheckCustomPaper(const Profile& profile, ProblemList& problems)
{
    const auto& custom = profile.customPaper;
    if (custom && !CheckCustomLimits(*custom, problems))
    {
        return;
    }
    for (std::size_t i = 0; i < profile.papers.size(); ++i)
    {
        const Paper& paper = profile.papers[i];
        if (paper.id != kUserPaper)
        {
            continue;
        }
        if (!custom)
        {
            problems.Add(At("papers", i, "id"), "256 is the user-defined size and needs customPaper");
            continue;
        }
        if (paper.width < custom->minWidth || paper.width > custom->maxWidth)
        {
            problems.Add(At("papers", i, "width"), "must lie within customPaper");
        }
        if (paper.height < custom->minHeight || paper.height > custom->maxHeight)
        {
            problems.Add(At("papers", i, "height"), "must lie within customPaper");
        }
    }
}

void CheckLists(const Profile& profile, ProblemList& problems)
{
    CheckItems(profile.papers, "papers", profile, problems);
    CheckItems(profile.bins, "bins", profile, problems);
    CheckItems(profile.mediaTypes, "mediaTypes", profile, problems);
    for (std::size_t i = 0; i < profile.resolutions.size(); ++i)
    {
        if (std::ranges::find(profile.resolutions, profile.resolutions[i]) - profile.resolutions.begin() <
            static_cast<std::ptrdiff_t>(i))
        {
            problems.Add(At("resolutions", i), "is listed twice");
        }
    }
    if (profile.resolutions.empty() && profile.qualityLevels.empty())
    {
        problems.Add("resolutions", "resolutions or qualityLevels must have an entry");
    }
    CheckKeywords(profile.staple, "staple", kStaples, problems);
    CheckKeywords(profile.punch, "punch", kPunches, problems);
    for (std::size_t i = 0; profile.nup && i < profile.nup->directions.size(); ++i)
    {
        const std::string& direction = profile.nup->directions[i];
        if (!IsVendorKeyword(direction) && !Contains(kDirections, direction))
        {
            problems.Add(At("nup.directions", i), "is not a keyword of this list");
        }
        if (IsVendorKeyword(direction) && profile.vendorNamespace.empty())
        {
            problems.Add(At("nup.directions", i), "needs vendorNamespace");
        }
    }
    if (profile.landscapeRotation % 90 != 0 || profile.landscapeRotation == 180)
    {
        problems.Add("landscapeRotation", "must be 0, 90 or 270");
    }
}

// One default that must be among what the printer offers.
void Expect(bool offered, std::string_view field, std::string_view reason, ProblemList& problems)
{
    if (!offered)
    {
        problems.Add(std::string(field), std::string(reason));
    }
}

void CheckPublicDefaults(const Profile& profile, ProblemList& problems)
{
    const PublicDefaults& mode = profile.deviceMode;
    Expect(mode.orientation != Orientation::Landscape || profile.landscapeRotation != 0,
           "deviceMode.orientation",
           "the printer has no landscape orientation",
           problems);
    Expect(ContainsId(profile.papers, mode.paper), "deviceMode.paper", "is not an id of papers", problems);
    Expect(
        !mode.source || ContainsId(profile.bins, *mode.source), "deviceMode.source", "is not an id of bins", problems);
    Expect(!mode.mediaType || ContainsId(profile.mediaTypes, *mode.mediaType),
           "deviceMode.mediaType",
           "is not an id of mediaTypes",
           problems);
    Expect(mode.copies <= profile.maxCopies, "deviceMode.copies", "must not be larger than maxCopies", problems);
    Expect(!mode.collate.value_or(false) || profile.collation,
           "deviceMode.collate",
           "the printer has no collation",
           problems);
    Expect(mode.color != ColorMode::Color || profile.color, "deviceMode.color", "the printer has no colour", problems);
    Expect(!mode.duplex || Contains(profile.duplex, *mode.duplex) ||
               (profile.duplex.empty() && mode.duplex == DuplexMode::Simplex),
           "deviceMode.duplex",
           "is not listed in duplex",
           problems);
    Expect(!mode.resolution || Contains(profile.resolutions, *mode.resolution),
           "deviceMode.resolution",
           "is not listed in resolutions",
           problems);
    Expect(!mode.quality || Contains(profile.qualityLevels, *mode.quality),
           "deviceMode.quality",
           "is not listed in qualityLevels",
           problems);
}

void CheckPrivateDefaults(const Profile& profile, ProblemList& problems)
{
    const PrivateDefaults& settings = profile.privateSettings;
    Expect(!profile.Has(Feature::Nup) || profile.nup, "private.features", "nup needs the nup object", problems);
    Expect(!profile.Has(Feature::Finishing) || !profile.staple.empty() || !profile.punch.empty(),
           "private.features",
           "finishing needs a staple or punch list",
           problems);
    Expect(profile.nup ? Contains(profile.nup->pagesPerSheet, settings.pagesPerSheet) : settings.pagesPerSheet == 1,
           "private.pagesPerSheet",
           "is not listed in nup.pagesPerSheet",
           problems);
    Expect(settings.nupLayout.empty() || (profile.nup && Contains(profile.nup->directions, settings.nupLayout)),
           "private.nupLayout",
           "is not listed in nup.directions",
           problems);
    Expect(settings.staple.empty() || Contains(profile.staple, settings.staple),
           "private.staple",
           "is not listed in staple",
           problems);
    Expect(settings.punch.empty() || Contains(profile.punch, settings.punch),
           "private.punch",
           "is not listed in punch",
           problems);
}

// The first entry of a list, or nothing.
template <class List>
auto FirstId(const List& list) -> std::optional<decltype(list.front().id)>
{
    return list.empty() ? std::nullopt : std::optional(list.front().id);
}

std::string DefaultKeyword(const std::vector<std::string>& keywords)
{
    if (keywords.empty() || Contains(keywords, "psk:None"))
    {
        return keywords.empty() ? "" : "psk:None";
    }
    return keywords.front();
}

void CompletePrintQuality(const Profile& profile, PublicDefaults& mode)
{
    if (!mode.quality && !mode.resolution)
    {
        if (profile.resolutions.empty())
        {
            mode.quality = profile.qualityLevels.front();
        }
        else
        {
            mode.resolution = profile.resolutions.front();
        }
    }
    if (mode.quality)
    {
        mode.resolution.reset();
    }
}

void CompletePublicDefaults(Profile& profile)
{
    PublicDefaults& mode = profile.deviceMode;
    mode.orientation =
        profile.landscapeRotation == 0 ? std::nullopt : std::optional(mode.orientation.value_or(Orientation::Portrait));
    mode.source = mode.source ? mode.source : FirstId(profile.bins);
    mode.mediaType = mode.mediaType ? mode.mediaType : FirstId(profile.mediaTypes);
    mode.collate = profile.collation ? std::optional(mode.collate.value_or(true)) : std::nullopt;
    mode.color = profile.color ? std::optional(mode.color.value_or(ColorMode::Color)) : std::nullopt;
    const DuplexMode duplex = Contains(profile.duplex, DuplexMode::Simplex) || profile.duplex.empty()
                                  ? DuplexMode::Simplex
                                  : profile.duplex.front();
    const bool hasDuplex =
        std::ranges::any_of(profile.duplex, [](DuplexMode value) { return value != DuplexMode::Simplex; });
    mode.duplex = hasDuplex ? std::optional(mode.duplex.value_or(duplex)) : std::nullopt;
    CompletePrintQuality(profile, mode);
}

} // namespace

void CheckProfile(const Profile& profile, ProblemList& problems)
{
    CheckText(profile, problems);
    CheckLists(profile, problems);
    CheckCustomPaper(profile, problems);
    CheckPublicDefaults(profile, problems);
    CheckPrivateDefaults(profile, problems);
}

void CompleteDefaults(Profile& profile)
{
    CompletePublicDefaults(profile);
    PrivateDefaults& settings = profile.privateSettings;
    if (settings.nupLayout.empty() && profile.nup)
    {
        settings.nupLayout = profile.nup->directions.front();
    }
    if (settings.staple.empty())
    {
        settings.staple = DefaultKeyword(profile.staple);
    }
    if (settings.punch.empty())
    {
        settings.punch = DefaultKeyword(profile.punch);
    }
}

} // namespace tsypr::service
