#include "tools/ppdimport/import_context.h"
#include "tools/ppdimport/item_table.h"
#include "tools/ppdimport/text.h"

#include <utility>

namespace tsypr::ppdimport
{
namespace
{

struct ItemKind
{
    const char* option;
    const char* vendorPrefix;
    std::size_t maxName;
    std::span<const StandardItem> standards;
};

constexpr int kFirstVendorItem = 256; // DMBIN_USER and DMMEDIA_USER

// The display text counts first: makers reuse choice names such as "Upper" for whatever tray is there.
const StandardItem* FindStandard(std::span<const StandardItem> standards, const PpdChoice& choice)
{
    for (const std::string& key : {Normalise(choice.text), Normalise(choice.name)})
    {
        for (const StandardItem& standard : standards)
        {
            if (HasWord(standard.names, key))
            {
                return &standard;
            }
        }
    }
    return nullptr;
}

// Identifiers and keywords given out so far; each is used once.
struct Taken
{
    std::set<int> ids;
    std::set<std::string> keywords;
    int nextId = kFirstVendorItem;
};

ProfileItem MakeItem(const ItemKind& kind, const PpdChoice& choice, Taken& taken)
{
    ProfileItem item;
    item.name = CutText(choice.text.empty() ? choice.name : choice.text, kind.maxName);
    if (const StandardItem* standard = FindStandard(kind.standards, choice))
    {
        if (standard->id != 0 && taken.ids.insert(standard->id).second)
        {
            item.id = standard->id;
        }
        if (!standard->keyword.empty() && taken.keywords.emplace(standard->keyword).second)
        {
            item.keyword = standard->keyword;
        }
    }
    if (item.id == 0)
    {
        item.id = taken.nextId++;
    }
    if (item.keyword.empty())
    {
        item.keyword = UniqueVendorKeyword(kind.vendorPrefix, choice.name, taken.keywords);
    }
    return item;
}

void ImportItems(ImportContext& context,
                 const ItemKind& kind,
                 std::vector<ProfileItem>& items,
                 std::optional<int>& defaultId)
{
    const PpdOption* option = context.Take(kind.option);
    if (option == nullptr)
    {
        context.Report(ReportSection::Assumptions, std::string(kind.option) + ": the printer offers no choice");
        return;
    }
    Taken taken;
    for (const PpdChoice& choice : option->choices)
    {
        ProfileItem item = MakeItem(kind, choice, taken);
        if (item.keyword.starts_with("ns0000:"))
        {
            const std::string id = std::to_string(item.id);
            context.Report(ReportSection::VendorNames, Describe(*option, choice) + ": " + item.keyword + ", id " + id);
        }
        if (choice.name == option->defaultChoice)
        {
            defaultId = item.id;
        }
        items.push_back(std::move(item));
    }
    if (!defaultId && !items.empty())
    {
        defaultId = items.front().id;
    }
}

} // namespace

void ImportBins(ImportContext& context, PrinterProfile& profile)
{
    ImportItems(context, {"InputSlot", "Bin", 23, StandardBins()}, profile.bins, profile.defaultBin);
}

void ImportMediaTypes(ImportContext& context, PrinterProfile& profile)
{
    ImportItems(
        context, {"MediaType", "Media", 63, StandardMediaTypes()}, profile.mediaTypes, profile.defaultMediaType);
}

} // namespace tsypr::ppdimport
