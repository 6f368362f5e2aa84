#include "tools/ppdimport/finishing_table.h"
#include "tools/ppdimport/import_context.h"
#include "tools/ppdimport/text.h"

#include <algorithm>
#include <map>
#include <utility>

namespace tsypr::ppdimport
{
namespace
{

constexpr std::string_view kNone = "psk:None";

const PpdOption* TakeOption(ImportContext& context, const FinishingTable& table)
{
    const PpdOption* option = context.Take(table.optionNames);
    return option != nullptr ? option : context.TakeByText(table.optionTexts);
}

void ImportChoices(const ImportContext& context,
                   const FinishingTable& table,
                   const PpdOption& option,
                   ProfileFinishing& finishing)
{
    std::map<std::string, std::string> firstChoice; // by keyword
    for (const PpdChoice& choice : option.choices)
    {
        const FinishingRule* rule = FindFinishingRule(table, choice);
        std::string described = Describe(option, choice);
        if (rule == nullptr || rule->keyword.empty())
        {
            context.Report(ReportSection::Dropped, described + ": no keyword of the print schema says this");
            continue;
        }
        const std::string keyword(rule->keyword);
        const auto [first, isNew] = firstChoice.emplace(keyword, choice.name);
        if (!isNew)
        {
            described += ": " + keyword;
            described += " stands for " + first->second;
            context.Report(ReportSection::Dropped, std::move(described));
            continue;
        }
        if (rule->assumed)
        {
            described += ": position not told, taken as " + keyword;
            context.Report(ReportSection::Assumptions, std::move(described));
        }
        finishing.keywords.push_back(keyword);
        if (choice.name == option.defaultChoice)
        {
            finishing.defaultKeyword = keyword;
        }
    }
}

ProfileFinishing ImportFeature(ImportContext& context, const FinishingTable& table, const char* what)
{
    ProfileFinishing finishing;
    const PpdOption* option = TakeOption(context, table);
    if (option == nullptr)
    {
        context.Report(ReportSection::Assumptions, std::string(what) + ": the PPD file has no such option");
        return finishing;
    }
    ImportChoices(context, table, *option, finishing);
    std::vector<std::string>& keywords = finishing.keywords;
    const auto none = std::find(keywords.begin(), keywords.end(), kNone);
    if (none == keywords.end())
    {
        keywords.emplace(keywords.begin(), kNone); // leaving the option out is always possible
    }
    else
    {
        std::rotate(keywords.begin(), none, none + 1);
    }
    if (keywords.size() == 1)
    {
        context.Report(ReportSection::Dropped, option->keyword + ": nothing to choose, left out as a whole");
        return {};
    }
    return finishing;
}

} // namespace

void ImportFinishing(ImportContext& context, PrinterProfile& profile)
{
    profile.staple = ImportFeature(context, StapleTable(), "Stapling");
    profile.punch = ImportFeature(context, PunchTable(), "Punching");
}

} // namespace tsypr::ppdimport
