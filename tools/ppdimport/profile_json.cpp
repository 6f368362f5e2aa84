#include "tools/ppdimport/profile.h"

#include "tools/ppdimport/text.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace tsypr::ppdimport
{
namespace
{

using Json = nlohmann::ordered_json;

constexpr std::size_t kMaxFormName = 31;

Json ItemsToJson(const std::vector<ProfileItem>& items)
{
    Json array = Json::array();
    for (const ProfileItem& item : items)
    {
        array.push_back({{"id", item.id}, {"name", item.name}, {"keyword", item.keyword}});
    }
    return array;
}

Json PapersToJson(const std::vector<ProfilePaper>& papers)
{
    Json array = Json::array();
    for (const ProfilePaper& paper : papers)
    {
        array.push_back({{"id", paper.id},
                         {"name", paper.name},
                         {"keyword", paper.keyword},
                         {"width", paper.width},
                         {"height", paper.height}});
    }
    return array;
}

Json ResolutionToJson(const ProfileResolution& resolution)
{
    return {{"x", resolution.x}, {"y", resolution.y}};
}

Json DeviceModeToJson(const PrinterProfile& profile)
{
    const ProfilePaper& paper = profile.papers.at(profile.defaultPaper);
    Json json = {{"orientation", "portrait"}, {"paper", paper.id}};
    if (profile.defaultBin)
    {
        json["source"] = *profile.defaultBin;
    }
    if (profile.defaultMediaType)
    {
        json["mediaType"] = *profile.defaultMediaType;
    }
    json["copies"] = 1;
    json["collate"] = profile.defaultCollate;
    json["color"] = profile.defaultColor ? "color" : "monochrome";
    json["duplex"] = profile.defaultDuplex;
    if (profile.defaultResolution)
    {
        json["resolution"] = ResolutionToJson(*profile.defaultResolution);
    }
    else if (!profile.defaultQuality.empty())
    {
        json["quality"] = profile.defaultQuality; // shares its field with the resolution
    }
    json["scale"] = 100;
    json["formName"] = CutText(paper.name, kMaxFormName);
    json["leadingExtra"] = 0;
    return json;
}

Json PrivateToJson(const PrinterProfile& profile)
{
    const bool finishing = !profile.staple.keywords.empty() || !profile.punch.keywords.empty();
    Json json = {{"compression", 0},
                 {"printTargetChoice", 0},
                 {"printAsImage", false},
                 {"showPreDialog", false},
                 {"pagesPerSheet", 1}};
    Json features = Json::array();
    if (profile.nup)
    {
        json["nupLayout"] = profile.nup->directions.front();
        features.push_back("nup");
    }
    if (!profile.staple.keywords.empty())
    {
        json["staple"] = profile.staple.defaultKeyword;
    }
    if (!profile.punch.keywords.empty())
    {
        json["punch"] = profile.punch.defaultKeyword;
    }
    features.insert(features.end(), {"printAsImage", "popupPreDialog", "compressionZlib"});
    if (finishing)
    {
        features.push_back("finishing");
    }
    json["locked"] = profile.locked;
    json["features"] = std::move(features);
    return json;
}

void AddCapabilities(const PrinterProfile& profile, Json& json)
{
    json["bins"] = ItemsToJson(profile.bins);
    json["mediaTypes"] = ItemsToJson(profile.mediaTypes);
    if (!profile.resolutions.empty())
    {
        Json resolutions = Json::array();
        for (const ProfileResolution& resolution : profile.resolutions)
        {
            resolutions.push_back(ResolutionToJson(resolution));
        }
        json["resolutions"] = std::move(resolutions);
    }
    if (!profile.qualityLevels.empty())
    {
        json["qualityLevels"] = profile.qualityLevels;
    }
    json["duplex"] = profile.duplex;
    json["color"] = profile.color;
    json["landscapeRotation"] = profile.landscapeRotation;
    json["maxCopies"] = profile.maxCopies;
    json["collation"] = profile.collation;
    json["pagesPerMinute"] = profile.pagesPerMinute;
    if (profile.nup)
    {
        json["nup"] = {{"pagesPerSheet", profile.nup->pagesPerSheet}, {"directions", profile.nup->directions}};
    }
    if (!profile.staple.keywords.empty())
    {
        json["staple"] = profile.staple.keywords;
    }
    if (!profile.punch.keywords.empty())
    {
        json["punch"] = profile.punch.keywords;
    }
}

} // namespace

std::string ToJson(const PrinterProfile& profile)
{
    Json json = {{"schemaVersion", 1},
                 {"name", profile.name},
                 {"manufacturer", profile.manufacturer},
                 {"model", profile.model},
                 {"vendorNamespace", profile.vendorNamespace}};
    json["deviceMode"] = DeviceModeToJson(profile);
    json["private"] = PrivateToJson(profile);
    json["papers"] = PapersToJson(profile.papers);
    if (profile.customPaper)
    {
        json["customPaper"] = {{"minWidth", profile.customPaper->minWidth},
                               {"minHeight", profile.customPaper->minHeight},
                               {"maxWidth", profile.customPaper->maxWidth},
                               {"maxHeight", profile.customPaper->maxHeight}};
    }
    AddCapabilities(profile, json);
    return json.dump(2) + "\n";
}

} // namespace tsypr::ppdimport
