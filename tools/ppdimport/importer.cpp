#include "tools/ppdimport/importer.h"

#include "tools/ppdimport/import_context.h"
#include "tools/ppdimport/ppd_reader.h"
#include "tools/ppdimport/text.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <utility>

namespace tsypr::ppdimport
{
namespace
{

constexpr std::size_t kMaxPrinterName = 255;
constexpr int kDefaultMaxCopies = 999;
constexpr int kLargestMaxCopies = 9999;
constexpr const char* kNamespaceBase = "http://schemas.zelmora.example/tessary/printer/";

bool StartsWithIgnoringCase(const std::string& text, const std::string& start)
{
    return Normalise(text).starts_with(Normalise(start));
}

// "http://.../ricoh-mp-c4503": the model's letters and digits with hyphens between.
std::string VendorNamespace(const std::string& model)
{
    std::string slug;
    for (const char c : model)
    {
        const std::string kept = Normalise(std::string(1, c));
        if (!kept.empty())
        {
            slug += kept;
        }
        else if (!slug.empty() && slug.back() != '-')
        {
            slug += '-';
        }
    }
    while (!slug.empty() && slug.back() == '-')
    {
        slug.pop_back();
    }
    return kNamespaceBase + (slug.empty() ? std::string("unnamed") : slug);
}

void ImportIdentity(const PpdModel& ppd, const ImportOptions& options, PrinterProfile& profile)
{
    profile.manufacturer = ppd.manufacturer;
    profile.model = !ppd.modelName.empty() ? ppd.modelName : ppd.nickname;
    std::string name = profile.model;
    if (!profile.manufacturer.empty() && !StartsWithIgnoringCase(name, profile.manufacturer))
    {
        name = CleanText(profile.manufacturer + " " + name);
    }
    // Printer names hold no commas: Windows puts them between the parts of a printer's address.
    std::replace(name.begin(), name.end(), ',', ' ');
    name = CleanText(name);
    profile.name = CutText(options.name.empty() ? name : CleanText(options.name), kMaxPrinterName);
    if (profile.name.empty())
    {
        throw InputError(ppd.fileName + ": neither ModelName nor NickName, and no name given");
    }
    profile.vendorNamespace = VendorNamespace(name.empty() ? profile.name : name);
}

void ImportLandscape(const ImportContext& context, PrinterProfile& profile)
{
    const auto found = context.Ppd().attributes.find("LandscapeOrientation");
    const std::string value = found != context.Ppd().attributes.end() ? found->second : "";
    profile.landscapeRotation = value == "Minus90" ? 270 : 90;
    if (value != "Minus90" && value != "Plus90")
    {
        context.Report(ReportSection::Assumptions, "Landscape: rotation not told, taken as 90 degrees");
    }
}

void ImportNumbers(const ImportContext& context, PrinterProfile& profile)
{
    profile.pagesPerMinute = context.Ppd().throughput;
    if (profile.pagesPerMinute == 0)
    {
        context.Report(ReportSection::Assumptions, "Pages per minute: not told");
    }
    const auto found = context.Ppd().attributes.find("cupsMaxCopies");
    int copies = 0;
    if (found != context.Ppd().attributes.end())
    {
        const std::string& text = found->second;
        std::from_chars(text.data(), text.data() + text.size(), copies);
    }
    profile.maxCopies = copies > 0 ? std::min(copies, kLargestMaxCopies) : kDefaultMaxCopies;
    if (copies <= 0)
    {
        context.Report(ReportSection::Assumptions, "Copies: largest number not told, taken as 999");
    }
}

void ReportInstallable(const ImportContext& context)
{
    std::string names;
    for (const PpdOption& option : context.Ppd().options)
    {
        if (option.installable)
        {
            names += (names.empty() ? "" : ", ") + option.text;
        }
    }
    if (!names.empty())
    {
        context.Report(ReportSection::Assumptions, "Installable options, all taken as fitted: " + names);
    }
}

void ReportOtherOptions(const ImportContext& context)
{
    std::map<std::string, std::string> groups;
    std::vector<std::string> order;
    for (const PpdOption& option : context.Ppd().options)
    {
        if (option.installable || context.IsUsed(option.keyword))
        {
            continue;
        }
        const auto [group, isNew] = groups.emplace(option.group, "");
        if (isNew)
        {
            order.push_back(option.group);
        }
        group->second += group->second.empty() ? "" : "; ";
        group->second += option.keyword;
        if (!option.text.empty() && option.text != option.keyword)
        {
            group->second += " (" + option.text + ")";
        }
        group->second += ", " + std::to_string(option.choices.size()) + " choices";
    }
    for (const std::string& group : order)
    {
        context.Report(ReportSection::OtherOptions, (group.empty() ? "-" : group) + ": " + groups[group]);
    }
}

// A PPD file states each pair both ways round and once per choice; the report counts them per pair of options.
void ReportConstraints(const ImportContext& context)
{
    std::map<std::pair<std::string, std::string>, int> counts;
    for (const PpdConstraint& constraint : context.Ppd().constraints)
    {
        counts[std::minmax(constraint.firstOption, constraint.secondOption)] += 1;
    }
    for (const auto& [pair, count] : counts)
    {
        context.Report(ReportSection::Constraints,
                       pair.first + " with " + pair.second + ": " + std::to_string(count) +
                           (count == 1 ? " rule" : " rules"));
    }
}

std::string Summary(const PpdModel& ppd, const PrinterProfile& profile)
{
    const auto count = [](std::size_t number) { return std::to_string(number); };
    std::string text = "Import of " + ppd.fileName + " (" + ppd.nickname + ")\n";
    text += "  printer:     " + profile.name + "\n";
    text += "  papers:      " + count(profile.papers.size()) + ", default " +
            profile.papers.at(profile.defaultPaper).name + (profile.customPaper ? ", user-defined sizes\n" : "\n");
    text += "  sources:     " + count(profile.bins.size()) + "\n";
    text += "  media types: " + count(profile.mediaTypes.size()) + "\n";
    text += "  resolutions: " + count(profile.resolutions.size()) + ", quality levels " +
            count(profile.qualityLevels.size()) + "\n";
    text += "  colour:      " + std::string(profile.color ? "yes" : "no") + "\n";
    text += "  duplex:      " + count(profile.duplex.size()) + " modes\n";
    text += "  n-up:        " + std::string(profile.nup ? "yes" : "no") + "\n";
    text += "  stapling:    " + count(profile.staple.keywords.size()) + " keywords\n";
    text += "  punching:    " + count(profile.punch.keywords.size()) + " keywords\n";
    return text;
}

} // namespace

ImportResult ImportPrinter(const PpdModel& ppd, const ImportOptions& options)
{
    ImportReport report;
    ImportContext context(ppd, report);
    PrinterProfile profile;
    ImportIdentity(ppd, options, profile);
    if (Normalise(ppd.language) != "english")
    {
        context.Report(ReportSection::Assumptions, "Display texts: in " + ppd.language + " unless translated");
    }
    ReportInstallable(context);
    ImportPapers(context, profile);
    ImportBins(context, profile);
    ImportMediaTypes(context, profile);
    ImportResolutions(context, profile);
    ImportDuplexColorCollate(context, profile);
    ImportNup(context, profile, options.withNup);
    ImportFinishing(context, profile);
    ImportLandscape(context, profile);
    ImportNumbers(context, profile);
    for (const char* setting : {"duplex", "color", "compressionLevel"})
    {
        if (std::find(options.locked.begin(), options.locked.end(), setting) != options.locked.end())
        {
            profile.locked.emplace_back(setting);
        }
    }
    ReportOtherOptions(context);
    ReportConstraints(context);
    const std::string summary = Summary(ppd, profile);
    return {std::move(profile), report.Render(summary)};
}

} // namespace tsypr::ppdimport
