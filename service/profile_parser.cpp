#include "service/profile_parser.h"

#include <functional>
#include <set>
#include <utility>

#include "service/json_reader.h"
#include "service/profile_validation.h"

namespace tsypr::service
{

namespace
{

using Json = nlohmann::json;

constexpr Range kPublicId{1, 0xFFFF};
constexpr Range kLength{1, 0x7FFF};
constexpr std::size_t kAnyKeyword = 255;
// The device mode keeps these keywords in fields of 30 characters.
constexpr std::size_t kStoredKeyword = 29;

constexpr Word<Orientation> kOrientations[] = {{"portrait", Orientation::Portrait},
                                               {"landscape", Orientation::Landscape}};
constexpr Word<ColorMode> kColorModes[] = {{"monochrome", ColorMode::Monochrome}, {"color", ColorMode::Color}};
constexpr Word<DuplexMode> kDuplexModes[] = {
    {"simplex", DuplexMode::Simplex}, {"vertical", DuplexMode::Vertical}, {"horizontal", DuplexMode::Horizontal}};
constexpr Word<QualityLevel> kQualityLevels[] = {{"draft", QualityLevel::Draft},
                                                 {"low", QualityLevel::Low},
                                                 {"medium", QualityLevel::Medium},
                                                 {"high", QualityLevel::High}};
constexpr Word<LockedSetting> kLockedSettings[] = {{"duplex", LockedSetting::Duplex},
                                                   {"color", LockedSetting::Color},
                                                   {"compressionLevel", LockedSetting::CompressionLevel}};
constexpr Word<Feature> kFeatures[] = {{"nup", Feature::Nup},
                                       {"printAsImage", Feature::PrintAsImage},
                                       {"popupPreDialog", Feature::PopupPreDialog},
                                       {"compressionZlib", Feature::CompressionZlib},
                                       {"finishing", Feature::Finishing}};

template <class Flag>
std::uint32_t Combine(const std::vector<Flag>& flags)
{
    std::uint32_t bits = 0;
    for (const Flag flag : flags)
    {
        bits |= static_cast<std::uint32_t>(flag);
    }
    return bits;
}

void ReadResolution(ObjectReader& reader, Resolution& resolution)
{
    reader.Integer("x", Presence::Required, kLength, resolution.x);
    reader.Integer("y", Presence::Required, kLength, resolution.y);
}

void ReadPublicDefaults(ObjectReader& reader, PublicDefaults& settings)
{
    reader.Choice<Orientation>("orientation", kOrientations, settings.orientation);
    reader.Integer("paper", Presence::Required, kPublicId, settings.paper);
    reader.Integer("source", Presence::Optional, kPublicId, settings.source);
    reader.Integer("mediaType", Presence::Optional, {1, 0x7FFFFFFF}, settings.mediaType);
    reader.Integer("copies", Presence::Optional, {1, 0x7FFF}, settings.copies);
    reader.Boolean("collate", Presence::Optional, settings.collate);
    reader.Choice<ColorMode>("color", kColorModes, settings.color);
    reader.Choice<DuplexMode>("duplex", kDuplexModes, settings.duplex);
    reader.Object("resolution",
                  Presence::Optional,
                  [&](ObjectReader& resolution) { ReadResolution(resolution, settings.resolution.emplace()); });
    reader.Choice<QualityLevel>("quality", kQualityLevels, settings.quality);
    reader.Integer("scale", Presence::Optional, {1, 1000}, settings.scale);
    reader.Text("formName", Presence::Optional, {1, 31}, settings.formName);
    reader.Integer("leadingExtra", Presence::Optional, {0, kMaxLeadingExtra}, settings.leadingExtra);
}

void ReadPrivateDefaults(ObjectReader& reader, PrivateDefaults& settings)
{
    reader.Integer("compression", Presence::Optional, {0, 3}, settings.compression);
    reader.Integer("printTargetChoice", Presence::Optional, {0, 1}, settings.printTargetChoice);
    reader.Boolean("printAsImage", Presence::Optional, settings.printAsImage);
    reader.Boolean("showPreDialog", Presence::Optional, settings.showPreDialog);
    reader.Integer("pagesPerSheet", Presence::Optional, {1, 100}, settings.pagesPerSheet);
    reader.Keyword("nupLayout", Presence::Optional, kStoredKeyword, settings.nupLayout);
    reader.Keyword("staple", Presence::Optional, kStoredKeyword, settings.staple);
    reader.Keyword("punch", Presence::Optional, kStoredKeyword, settings.punch);
    std::vector<LockedSetting> locked;
    reader.ChoiceList<LockedSetting>("locked", kLockedSettings, locked);
    settings.locked = Combine(locked);
    std::vector<Feature> features;
    reader.ChoiceList<Feature>("features", kFeatures, features);
    settings.features = Combine(features);
}

template <class Item>
void ReadNamed(ObjectReader& reader, Range ids, std::size_t longestName, Item& item)
{
    reader.Integer("id", Presence::Required, ids, item.id);
    reader.Text("name", Presence::Required, {1, longestName}, item.name);
    reader.Keyword("keyword", Presence::Required, kAnyKeyword, item.keyword);
}

void ReadLists(ObjectReader& reader, Profile& profile)
{
    reader.Objects("papers",
                   Presence::Required,
                   1,
                   [&](ObjectReader& item)
                   {
                       Paper& paper = profile.papers.emplace_back();
                       ReadNamed(item, kPublicId, 63, paper);
                       item.Integer("width", Presence::Required, kLength, paper.width);
                       item.Integer("height", Presence::Required, kLength, paper.height);
                   });
    reader.Objects("bins",
                   Presence::Optional,
                   0,
                   [&](ObjectReader& item) { ReadNamed(item, kPublicId, 23, profile.bins.emplace_back()); });
    reader.Objects("mediaTypes",
                   Presence::Optional,
                   0,
                   [&](ObjectReader& item) {
                       ReadNamed(item, {1, 0x7FFFFFFF}, 63, profile.mediaTypes.emplace_back());
                   });
    reader.Objects("resolutions",
                   Presence::Optional,
                   0,
                   [&](ObjectReader& item) { ReadResolution(item, profile.resolutions.emplace_back()); });
    reader.ChoiceList<QualityLevel>("qualityLevels", kQualityLevels, profile.qualityLevels);
    reader.ChoiceList<DuplexMode>("duplex", kDuplexModes, profile.duplex);
    reader.KeywordList("staple", Presence::Optional, kStoredKeyword, profile.staple);
    reader.KeywordList("punch", Presence::Optional, kStoredKeyword, profile.punch);
}

void ReadOptionalObjects(ObjectReader& reader, Profile& profile)
{
    reader.Object("customPaper",
                  Presence::Optional,
                  [&](ObjectReader& item)
                  {
                      CustomPaper& custom = profile.customPaper.emplace();
                      item.Integer("minWidth", Presence::Required, kLength, custom.minWidth);
                      item.Integer("minHeight", Presence::Required, kLength, custom.minHeight);
                      item.Integer("maxWidth", Presence::Required, kLength, custom.maxWidth);
                      item.Integer("maxHeight", Presence::Required, kLength, custom.maxHeight);
                  });
    reader.Object("nup",
                  Presence::Optional,
                  [&](ObjectReader& item)
                  {
                      Nup& nup = profile.nup.emplace();
                      item.IntegerList("pagesPerSheet", {1, 100}, nup.pagesPerSheet);
                      item.KeywordList("directions", Presence::Required, kStoredKeyword, nup.directions);
                  });
}

void ReadProfile(ObjectReader& reader, Profile& profile)
{
    int schemaVersion = 1;
    reader.Integer("schemaVersion", Presence::Required, {1, 1}, schemaVersion);
    reader.Text("name", Presence::Required, {1, 255}, profile.name);
    reader.Text("manufacturer", Presence::Optional, {0, 255}, profile.manufacturer);
    reader.Text("model", Presence::Optional, {0, 255}, profile.model);
    reader.Text("vendorNamespace", Presence::Optional, {0, 2000}, profile.vendorNamespace);
    reader.Object(
        "deviceMode", Presence::Required, [&](ObjectReader& item) { ReadPublicDefaults(item, profile.deviceMode); });
    reader.Object(
        "private", Presence::Optional, [&](ObjectReader& item) { ReadPrivateDefaults(item, profile.privateSettings); });
    ReadLists(reader, profile);
    ReadOptionalObjects(reader, profile);
    reader.Boolean("color", Presence::Optional, profile.color);
    std::optional<std::uint16_t> rotation;
    reader.Integer("landscapeRotation", Presence::Optional, {0, 270}, rotation);
    profile.landscapeRotation = rotation.value_or(profile.landscapeRotation);
    reader.Integer("maxCopies", Presence::Optional, {1, 0x7FFF}, profile.maxCopies);
    reader.Boolean("collation", Presence::Optional, profile.collation);
    reader.Integer("pagesPerMinute", Presence::Optional, {0, 10000}, profile.pagesPerMinute);
}

// Watches the parser, since a parsed object no longer shows that a field was given twice.
class RepeatWatch
{
public:
    explicit RepeatWatch(ProblemList& problems) : m_problems(problems) {}

    bool operator()(int, Json::parse_event_t event, Json& value)
    {
        if (event == Json::parse_event_t::object_start)
        {
            m_objects.emplace_back();
        }
        else if (event == Json::parse_event_t::object_end)
        {
            m_objects.pop_back();
        }
        else if (event == Json::parse_event_t::key)
        {
            const auto& key = value.get_ref<const std::string&>();
            if (!m_objects.back().insert(key).second)
            {
                m_problems.Add(key, "is given twice");
            }
        }
        return true;
    }

private:
    ProblemList& m_problems;
    std::vector<std::set<std::string>> m_objects;
};

// The parser's message without the library's own prefix.
std::string SyntaxReason(const Json::exception& error)
{
    const std::string_view message = error.what();
    const std::size_t bracket = message.find("] ");
    return "is not JSON: " + std::string(bracket == std::string_view::npos ? message : message.substr(bracket + 2));
}

} // namespace

std::optional<Profile> ParseProfile(std::string_view json,
                                    const std::string& file,
                                    std::vector<ProfileProblem>& problems)
{
    ProblemList list(file, problems);
    Profile profile;
    try
    {
        RepeatWatch watch(list);
        const Json document = Json::parse(json.begin(), json.end(), std::ref(watch));
        ObjectReader reader(document, "", list);
        ReadProfile(reader, profile);
        reader.ReportUnknown();
    }
    catch (const Json::exception& error)
    {
        list.Add("", SyntaxReason(error));
    }
    if (!list.Any())
    {
        CheckProfile(profile, list);
    }
    if (list.Any())
    {
        return std::nullopt;
    }
    CompleteDefaults(profile);
    return profile;
}

} // namespace tsypr::service
