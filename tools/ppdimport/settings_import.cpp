#include "tools/ppdimport/import_context.h"
#include "tools/ppdimport/settings_table.h"
#include "tools/ppdimport/text.h"

#include <algorithm>
#include <charconv>
#include <map>

namespace tsypr::ppdimport
{
namespace
{

constexpr int kMaxPagesPerSheet = 64;
constexpr int kMaxResolution = 9600;

// The number at the start of `text`, which it removes; nothing when there is none.
std::optional<int> TakeNumber(std::string_view& text)
{
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || value <= 0)
    {
        return std::nullopt;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return value;
}

// "600dpi", "1200x600dpi", "600 dpi".
std::optional<ProfileResolution> ParseResolution(std::string_view text)
{
    const std::optional<int> x = TakeNumber(text);
    std::optional<int> y = x;
    if (x && (text.starts_with("x") || text.starts_with("X")))
    {
        text.remove_prefix(1);
        y = TakeNumber(text);
    }
    if (!x || !y || !Normalise(text).starts_with("dpi") || *x > kMaxResolution || *y > kMaxResolution)
    {
        return std::nullopt;
    }
    return ProfileResolution{*x, *y};
}

std::optional<ProfileResolution> ParseResolution(const PpdChoice& choice)
{
    const std::optional<ProfileResolution> byName = ParseResolution(std::string_view(choice.name));
    return byName ? byName : ParseResolution(std::string_view(choice.text));
}

void ReportDropped(const ImportContext& context, const PpdOption& option, const PpdChoice& choice, const char* why)
{
    context.Report(ReportSection::Dropped, Describe(option, choice) + ": " + why);
}

void ImportResolutionOption(const ImportContext& context, const PpdOption& option, PrinterProfile& profile)
{
    for (const PpdChoice& choice : option.choices)
    {
        const std::optional<ProfileResolution> resolution = ParseResolution(choice);
        if (!resolution)
        {
            ReportDropped(context, option, choice, "not a resolution");
            continue;
        }
        if (std::find(profile.resolutions.begin(), profile.resolutions.end(), *resolution) != profile.resolutions.end())
        {
            ReportDropped(context, option, choice, "same resolution as a choice before");
            continue;
        }
        profile.resolutions.push_back(*resolution);
        if (choice.name == option.defaultChoice)
        {
            profile.defaultResolution = resolution;
        }
    }
}

// The value of a setting that each choice of an option means, reporting the choices that mean none.
std::map<std::string, std::string> MapChoices(const ImportContext& context,
                                              const PpdOption& option,
                                              const SettingTable& table)
{
    std::map<std::string, std::string> values; // by choice name
    for (const PpdChoice& choice : option.choices)
    {
        const auto matches = [&](const SettingValue& value)
        { return HasWord(value.names, Normalise(choice.name)) || HasWord(value.names, Normalise(choice.text)); };
        const auto found = std::find_if(table.values.begin(), table.values.end(), matches);
        if (found == table.values.end())
        {
            ReportDropped(context, option, choice, "no such value in a profile");
            continue;
        }
        values.emplace(choice.name, found->value);
    }
    return values;
}

// The values that occur, in the order of the table.
std::vector<std::string> Occurring(const SettingTable& table, const std::map<std::string, std::string>& choices)
{
    std::vector<std::string> values;
    for (const SettingValue& value : table.values)
    {
        const auto means = [&](const auto& choice) { return choice.second == value.value; };
        if (std::any_of(choices.begin(), choices.end(), means))
        {
            values.emplace_back(value.value);
        }
    }
    return values;
}

std::string DefaultOf(const PpdOption& option,
                      const std::map<std::string, std::string>& choices,
                      const std::string& otherwise)
{
    const auto found = choices.find(option.defaultChoice);
    return found != choices.end() ? found->second : otherwise;
}

void ImportQuality(ImportContext& context, PrinterProfile& profile)
{
    const SettingTable& table = QualityTable();
    if (const PpdOption* option = context.Take(table.optionNames))
    {
        const std::map<std::string, std::string> choices = MapChoices(context, *option, table);
        profile.qualityLevels = Occurring(table, choices);
        if (!profile.qualityLevels.empty())
        {
            profile.defaultQuality = DefaultOf(*option, choices, profile.qualityLevels.front());
        }
    }
}

void ImportDuplex(ImportContext& context, PrinterProfile& profile)
{
    const SettingTable& table = DuplexTable();
    profile.duplex = {"simplex"};
    const PpdOption* option = context.Take(table.optionNames);
    if (option == nullptr)
    {
        context.Report(ReportSection::Assumptions, "Duplex: no such option, one-sided only");
        return;
    }
    const std::map<std::string, std::string> choices = MapChoices(context, *option, table);
    std::vector<std::string> values = Occurring(table, choices);
    if (!values.empty())
    {
        profile.duplex = values;
        profile.defaultDuplex = DefaultOf(*option, choices, values.front());
    }
}

void ImportColor(ImportContext& context, PrinterProfile& profile)
{
    const SettingTable& table = ColorTable();
    profile.color = context.Ppd().colorDevice;
    profile.defaultColor = profile.color;
    const PpdOption* option = context.Take(table.optionNames);
    if (option == nullptr || !profile.color)
    {
        return;
    }
    const std::map<std::string, std::string> choices = MapChoices(context, *option, table);
    profile.defaultColor = DefaultOf(*option, choices, "color") == "color";
}

void ImportCollate(ImportContext& context, PrinterProfile& profile)
{
    const SettingTable& table = CollateTable();
    const PpdOption* option = context.Take(table.optionNames);
    if (option == nullptr)
    {
        context.Report(ReportSection::Assumptions, "Collation: no such option, taken as not offered");
        return;
    }
    const std::map<std::string, std::string> choices = MapChoices(context, *option, table);
    const std::vector<std::string> values = Occurring(table, choices);
    profile.collation = std::find(values.begin(), values.end(), "on") != values.end();
    profile.defaultCollate = profile.collation && DefaultOf(*option, choices, "off") == "on";
}

// "2up", "4 pages", "2 in 1": the first number is the count. "Off" and the like are one page.
std::optional<int> ParsePages(const PpdChoice& choice)
{
    for (std::string_view text : {std::string_view(choice.name), std::string_view(choice.text)})
    {
        const std::size_t digit = text.find_first_of("0123456789");
        if (digit != std::string_view::npos)
        {
            text.remove_prefix(digit);
            const std::optional<int> pages = TakeNumber(text);
            return pages && *pages <= kMaxPagesPerSheet ? pages : std::nullopt;
        }
    }
    return HasWord("none off false normal", Normalise(choice.name)) ? std::optional<int>(1) : std::nullopt;
}

} // namespace

void ImportResolutions(ImportContext& context, PrinterProfile& profile)
{
    if (const PpdOption* option = context.Take(ResolutionOptionNames()))
    {
        ImportResolutionOption(context, *option, profile);
    }
    const auto attribute = context.Ppd().attributes.find("DefaultResolution");
    if (profile.resolutions.empty() && attribute != context.Ppd().attributes.end())
    {
        if (const std::optional<ProfileResolution> resolution = ParseResolution(std::string_view(attribute->second)))
        {
            profile.resolutions.push_back(*resolution);
        }
    }
    ImportQuality(context, profile);
    if (profile.resolutions.empty() && profile.qualityLevels.empty())
    {
        context.Report(ReportSection::Assumptions, "Resolution: not told, taken as 600 dpi");
        profile.resolutions.push_back({600, 600});
    }
    if (!profile.defaultResolution && !profile.resolutions.empty())
    {
        profile.defaultResolution = profile.resolutions.front();
    }
}

void ImportDuplexColorCollate(ImportContext& context, PrinterProfile& profile)
{
    ImportDuplex(context, profile);
    ImportColor(context, profile);
    ImportCollate(context, profile);
}

void ImportNup(ImportContext& context, PrinterProfile& profile, bool composedByClient)
{
    if (composedByClient)
    {
        profile.nup = ProfileNup{{1, 2, 4, 6, 9, 16},
                                 {"psk:RightBottom",
                                  "psk:BottomRight",
                                  "psk:LeftBottom",
                                  "psk:BottomLeft",
                                  "psk:RightTop",
                                  "psk:TopRight",
                                  "psk:LeftTop",
                                  "psk:TopLeft"}};
        context.Report(ReportSection::Assumptions, "N-up: composed by the redirection client, not by the printer");
        return;
    }
    const PpdOption* option = context.Take(NupOptionNames());
    if (option == nullptr)
    {
        context.Report(ReportSection::Assumptions, "N-up: the PPD file has no such option");
        return;
    }
    std::set<int> pages = {1};
    for (const PpdChoice& choice : option->choices)
    {
        if (const std::optional<int> count = ParsePages(choice))
        {
            pages.insert(*count);
        }
        else
        {
            ReportDropped(context, *option, choice, "not a number of pages");
        }
    }
    if (pages.size() > 1)
    {
        profile.nup = ProfileNup{{pages.begin(), pages.end()}, {"psk:RightBottom"}};
        context.Report(ReportSection::Assumptions, "N-up: direction not told, taken as psk:RightBottom");
    }
}

} // namespace tsypr::ppdimport
