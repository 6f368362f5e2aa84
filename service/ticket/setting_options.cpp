#include "service/ticket/setting_options.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "service/ticket/keywords.h"

namespace tsypr::service
{

namespace
{

QName FromKeyword(const Profile& profile, std::string_view keyword)
{
    const std::string_view local = keyword.substr(keyword.find(':') + 1);
    return keyword.starts_with("psk:") ? Psk(local) : QName{VendorUri(profile), std::string(local)};
}

TicketOption Public(std::string_view name, std::int64_t value)
{
    return {Psk(name), "", {}, value};
}

template <class Item>
std::vector<TicketOption> FromItems(const Profile& profile, const std::vector<Item>& items)
{
    std::vector<TicketOption> options;
    options.reserve(items.size());
    for (const Item& item : items)
    {
        options.push_back({FromKeyword(profile, item.keyword), item.name, {}, item.id});
    }
    return options;
}

std::vector<TicketOption> FromKeywords(const Profile& profile, const std::vector<std::string>& keywords)
{
    std::vector<TicketOption> options;
    options.reserve(keywords.size());
    for (const std::string& keyword : keywords)
    {
        options.push_back({FromKeyword(profile, keyword), "", {}, static_cast<std::int64_t>(options.size())});
    }
    return options;
}

TicketOption CustomSize(std::string displayName)
{
    return {Psk("CustomMediaSize"),
            std::move(displayName),
            {{"MediaSizeWidth", 0, "", "PageMediaSizeMediaSizeWidth"},
             {"MediaSizeHeight", 0, "", "PageMediaSizeMediaSizeHeight"}},
            kUserPaper};
}

} // namespace

std::vector<TicketOption> MediaSizeOptions(const Profile& profile)
{
    std::vector<TicketOption> options;
    for (const Paper& paper : profile.papers)
    {
        if (paper.id == kUserPaper)
        {
            options.push_back(CustomSize(paper.name));
            continue;
        }
        options.push_back({FromKeyword(profile, paper.keyword),
                           paper.name,
                           {{"MediaSizeWidth", paper.width * kMicronsPerTenth, "", ""},
                            {"MediaSizeHeight", paper.height * kMicronsPerTenth, "", ""}},
                           paper.id});
    }
    // A device mode may ask for the user-defined size although programs are not shown it in the list of papers.
    if (profile.customPaper && profile.FindPaper(kUserPaper) == nullptr)
    {
        options.push_back(CustomSize(""));
    }
    return options;
}

std::vector<TicketOption> OrientationOptions(const Profile& profile)
{
    std::vector<TicketOption> options = {Public("Portrait", static_cast<std::int64_t>(Orientation::Portrait))};
    if (profile.deviceMode.orientation)
    {
        options.push_back(Public("Landscape", static_cast<std::int64_t>(Orientation::Landscape)));
    }
    return options;
}

std::vector<TicketOption> DuplexOptions(const Profile& profile)
{
    std::vector<TicketOption> options;
    for (const DuplexMode mode : profile.duplex)
    {
        const auto value = static_cast<std::int64_t>(mode);
        if (mode == DuplexMode::Simplex)
        {
            options.push_back(Public("OneSided", value));
            continue;
        }
        options.push_back(Public(mode == DuplexMode::Vertical ? "TwoSidedLongEdge" : "TwoSidedShortEdge", value));
        options.back().scored.push_back({"DuplexMode", 0, "Automatic", ""});
    }
    return options;
}

std::vector<TicketOption> ColorOptions(const Profile& profile)
{
    std::vector<TicketOption> options;
    if (profile.color)
    {
        options.push_back(Public("Color", static_cast<std::int64_t>(ColorMode::Color)));
    }
    options.push_back(Public("Monochrome", static_cast<std::int64_t>(ColorMode::Monochrome)));
    return options;
}

std::vector<TicketOption> QualityOptions(const Profile& profile)
{
    std::vector<TicketOption> options;
    for (const QualityLevel level : profile.qualityLevels)
    {
        const auto value = static_cast<std::int64_t>(level);
        switch (level)
        {
        case QualityLevel::Draft:
            options.push_back(Public("Draft", value));
            break;
        case QualityLevel::Low:
            // The print schema has nothing between draft and normal.
            options.push_back({QName{VendorUri(profile), "Low"}, "", {}, value});
            break;
        case QualityLevel::Medium:
            options.push_back(Public("Normal", value));
            break;
        case QualityLevel::High:
            options.push_back(Public("High", value));
            break;
        }
    }
    return options;
}

std::vector<TicketOption> ResolutionOptions(const Profile& profile)
{
    std::vector<TicketOption> options;
    for (const Resolution& resolution : profile.resolutions)
    {
        options.push_back({std::nullopt,
                           "",
                           {{"ResolutionX", resolution.x, "", ""}, {"ResolutionY", resolution.y, "", ""}},
                           PackResolution(resolution.x, resolution.y)});
    }
    return options;
}

std::vector<TicketOption> InputBinOptions(const Profile& profile)
{
    return FromItems(profile, profile.bins);
}

std::vector<TicketOption> MediaTypeOptions(const Profile& profile)
{
    return FromItems(profile, profile.mediaTypes);
}

std::vector<TicketOption> CollateOptions(const Profile& profile)
{
    if (!profile.collation)
    {
        return {};
    }
    return {Public("Collated", 1), Public("Uncollated", 0)};
}

std::vector<TicketOption> ScalingOptions(const Profile& profile)
{
    if (!profile.deviceMode.scale)
    {
        return {};
    }
    std::vector<TicketOption> options = {Public("None", kUnscaled), Public("CustomSquare", kScaled)};
    options.back().scored.push_back({"Scale", 0, "", "PageScalingScale"});
    return options;
}

std::vector<TicketOption> NupOptions(const Profile& profile)
{
    std::vector<TicketOption> options;
    if (profile.Has(Feature::Nup) && profile.nup)
    {
        for (const std::uint32_t pages : profile.nup->pagesPerSheet)
        {
            options.push_back({std::nullopt, "", {{"PagesPerSheet", pages, "", ""}}, pages});
        }
    }
    return options;
}

std::vector<TicketOption> DirectionOptions(const Profile& profile)
{
    return profile.Has(Feature::Nup) && profile.nup ? FromKeywords(profile, profile.nup->directions)
                                                    : std::vector<TicketOption>();
}

std::vector<TicketOption> StapleOptions(const Profile& profile)
{
    return profile.Has(Feature::Finishing) ? FromKeywords(profile, profile.staple) : std::vector<TicketOption>();
}

std::vector<TicketOption> PunchOptions(const Profile& profile)
{
    return profile.Has(Feature::Finishing) ? FromKeywords(profile, profile.punch) : std::vector<TicketOption>();
}

} // namespace tsypr::service
