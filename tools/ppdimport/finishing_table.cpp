#include "tools/ppdimport/finishing_table.h"

#include "tools/ppdimport/text.h"

#include <set>
#include <string>

namespace tsypr::ppdimport
{
namespace
{

struct Synonym
{
    std::string_view word;
    std::string_view others;
};

constexpr Synonym kSynonyms[] = {
    {"none", "off no false"},
    {"on", "yes true auto"},
    {"top", "upper"},
    {"bottom", "lower"},
    {"dual", "2 two double"},
    {"center", "centre middle"},
    {"saddle", "booklet pamphlet"},
    {"rear", "back"},
    {"hole", "holes"},
};

std::set<std::string> ChoiceWords(std::string_view text)
{
    std::set<std::string> words;
    for (const std::string& word : Words(text))
    {
        std::string_view canonical = word;
        for (const Synonym& synonym : kSynonyms)
        {
            canonical = HasWord(synonym.others, word) ? synonym.word : canonical;
        }
        words.emplace(canonical);
    }
    return words;
}

bool HoldsAll(const std::set<std::string>& words, std::string_view wanted)
{
    while (!wanted.empty())
    {
        const std::size_t end = wanted.find(' ');
        if (!words.contains(std::string(wanted.substr(0, end))))
        {
            return false;
        }
        wanted.remove_prefix(end == std::string_view::npos ? wanted.size() : end + 1);
    }
    return true;
}

const FinishingRule* FindRule(const FinishingTable& table, std::string_view text)
{
    const std::set<std::string> words = ChoiceWords(text);
    for (const FinishingRule& rule : table.rules)
    {
        if (HoldsAll(words, rule.words))
        {
            return &rule;
        }
    }
    return nullptr;
}

} // namespace

const FinishingRule* FindFinishingRule(const FinishingTable& table, const PpdChoice& choice)
{
    const FinishingRule* rule = FindRule(table, choice.text);
    return rule != nullptr ? rule : FindRule(table, choice.name);
}

} // namespace tsypr::ppdimport
