#include "tools/ppdimport/import_context.h"
#include "tools/ppdimport/paper_table.h"
#include "tools/ppdimport/ppd_reader.h"
#include "tools/ppdimport/text.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tsypr::ppdimport
{
namespace
{

constexpr std::size_t kMaxPaperName = 63;
constexpr int kUserDefinedPaper = 256;
constexpr int kFirstVendorPaper = 257;
constexpr int kMaxLength = 32767; // what a device mode can hold

// One PageSize choice on its way to a paper.
struct Candidate
{
    const PpdChoice* choice = nullptr;
    PaperName name;
    int width = 0;
    int height = 0;
    const StandardPaper* sizeOf = nullptr; // the standard whose exact size it has
    int id = 0;
    std::string_view keyword;
};

int ToTenths(double points)
{
    return static_cast<int>(std::lround(points * 254.0 / 72.0));
}

bool UsableLength(double points)
{
    return points > 0 && points * 254.0 / 72.0 <= kMaxLength;
}

std::vector<Candidate> CollectCandidates(const ImportContext& context, const PpdOption& option)
{
    std::vector<Candidate> candidates;
    for (const PpdChoice& choice : option.choices)
    {
        const auto size = context.Ppd().sizes.find(choice.name);
        if (size == context.Ppd().sizes.end() || !UsableLength(size->second.width) ||
            !UsableLength(size->second.length))
        {
            context.Report(ReportSection::Dropped, Describe(option, choice) + ": no usable PaperDimension");
            continue;
        }
        Candidate candidate;
        candidate.choice = &choice;
        candidate.name = ParsePaperName(choice.name);
        candidate.width = ToTenths(size->second.width);
        candidate.height = ToTenths(size->second.length);
        candidates.push_back(candidate);
    }
    return candidates;
}

// Claims the identifier and keyword of a standard for the first paper that has it.
class Claims
{
public:
    bool Claim(Candidate& candidate, int id, std::string_view keyword)
    {
        const bool idFree = id == 0 || !m_ids.contains(id);
        const bool keywordFree = keyword.empty() || !m_keywords.contains(std::string(keyword));
        if (!idFree || !keywordFree)
        {
            return false;
        }
        if (id != 0)
        {
            m_ids.insert(id);
        }
        if (!keyword.empty())
        {
            m_keywords.emplace(keyword);
        }
        candidate.id = id;
        candidate.keyword = keyword;
        return true;
    }

    std::set<std::string>& Keywords()
    {
        return m_keywords;
    }

private:
    std::set<int> m_ids;
    std::set<std::string> m_keywords;
};

void TakeSizeOf(Candidate& candidate, const StandardPaper& standard, bool turned)
{
    candidate.sizeOf = &standard;
    candidate.width = turned ? standard.height : standard.width;
    candidate.height = turned ? standard.width : standard.height;
}

void ClaimVariant(Candidate& candidate, const StandardPaper& standard, bool turned, Claims& claims)
{
    const TurnedPaper* forms = FindTurnedPaper(standard.id);
    if (forms == nullptr || candidate.name.variant == PaperVariant::Borderless)
    {
        return;
    }
    if (turned)
    {
        claims.Claim(candidate, forms->rotatedId, forms->rotatedKeyword);
    }
    else if (candidate.name.variant == PaperVariant::Transverse)
    {
        claims.Claim(candidate, forms->transverseId, "");
    }
}

// Names first: a paper that merely has the size of a standard must not take the identifier of the one that is named so.
void ClaimByName(Candidate& candidate, Claims& claims)
{
    const std::string& base = candidate.name.base;
    if (const StandardPaper* standard = FindPaperByName(base, candidate.width, candidate.height))
    {
        TakeSizeOf(candidate, *standard, false);
        if (candidate.name.variant == PaperVariant::Plain)
        {
            claims.Claim(candidate, standard->id, standard->keyword);
        }
        else
        {
            ClaimVariant(candidate, *standard, false, claims);
        }
        return;
    }
    if (const StandardPaper* standard = FindPaperByName(base, candidate.height, candidate.width))
    {
        TakeSizeOf(candidate, *standard, true);
        ClaimVariant(candidate, *standard, true, claims);
    }
}

void ClaimBySize(Candidate& candidate, Claims& claims)
{
    if (candidate.sizeOf != nullptr)
    {
        return;
    }
    if (const StandardPaper* standard = FindPaperBySize(candidate.width, candidate.height))
    {
        TakeSizeOf(candidate, *standard, false);
        if (candidate.name.variant == PaperVariant::Plain)
        {
            claims.Claim(candidate, standard->id, standard->keyword);
        }
    }
}

void ReportVendorPaper(const ImportContext& context,
                       const PpdOption& option,
                       const Candidate& from,
                       const ProfilePaper& paper)
{
    std::string line = Describe(option, *from.choice) + ": " + paper.keyword + ", id " + std::to_string(paper.id);
    if (from.name.variant == PaperVariant::Borderless)
    {
        line += ", borderless form";
    }
    context.Report(ReportSection::VendorNames, line);
}

void EmitPapers(const ImportContext& context,
                const PpdOption& option,
                const std::vector<Candidate>& candidates,
                Claims& claims,
                PrinterProfile& profile)
{
    int nextId = kFirstVendorPaper;
    for (const Candidate& candidate : candidates)
    {
        const PpdChoice& choice = *candidate.choice;
        ProfilePaper paper;
        paper.id = candidate.id != 0 ? candidate.id : nextId++;
        paper.name = CutText(choice.text.empty() ? choice.name : choice.text, kMaxPaperName);
        paper.width = candidate.width;
        paper.height = candidate.height;
        paper.keyword = candidate.keyword.empty() ? UniqueVendorKeyword("Paper", choice.name, claims.Keywords())
                                                  : std::string(candidate.keyword);
        if (candidate.id == 0 || candidate.keyword.empty())
        {
            ReportVendorPaper(context, option, candidate, paper);
        }
        if (choice.name == option.defaultChoice)
        {
            profile.defaultPaper = profile.papers.size();
        }
        profile.papers.push_back(std::move(paper));
    }
}

void ImportCustomPaper(const ImportContext& context, PrinterProfile& profile)
{
    const std::optional<PpdCustomSize>& custom = context.Ppd().customSize;
    if (!custom)
    {
        return;
    }
    const auto limit = [](double points) { return std::min(std::max(ToTenths(points), 1), kMaxLength); };
    const ProfileCustomPaper range = {limit(custom->minimum.width),
                                      limit(custom->minimum.length),
                                      limit(custom->maximum.width),
                                      limit(custom->maximum.length)};
    if (range.minWidth > range.maxWidth || range.minHeight > range.maxHeight)
    {
        context.Report(ReportSection::Dropped, "CustomPageSize: the smallest size exceeds the largest");
        return;
    }
    profile.customPaper = range;
    // Programs choose a size of the user's own by this entry; its own size is the usual one, as far as the range goes.
    const ProfilePaper usual = profile.papers.at(profile.defaultPaper);
    profile.papers.push_back({kUserDefinedPaper,
                              "Custom Page Size",
                              "psk:CustomMediaSize",
                              std::clamp(usual.width, range.minWidth, range.maxWidth),
                              std::clamp(usual.height, range.minHeight, range.maxHeight)});
}

} // namespace

void ImportPapers(ImportContext& context, PrinterProfile& profile)
{
    const PpdOption* option = context.Take("PageSize");
    context.MarkUsed("PageRegion"); // repeats PageSize for manual feeding
    if (option == nullptr)
    {
        throw InputError(context.Ppd().fileName + ": no PageSize option");
    }
    std::vector<Candidate> candidates = CollectCandidates(context, *option);
    if (candidates.empty())
    {
        throw InputError(context.Ppd().fileName + ": no usable page size");
    }
    Claims claims;
    for (Candidate& candidate : candidates)
    {
        ClaimByName(candidate, claims);
    }
    for (Candidate& candidate : candidates)
    {
        ClaimBySize(candidate, claims);
    }
    EmitPapers(context, *option, candidates, claims, profile);
    ImportCustomPaper(context, profile);
}

} // namespace tsypr::ppdimport
