#ifndef TESSARY_TOOLS_PPDIMPORT_FINISHING_TABLE_H
#define TESSARY_TOOLS_PPDIMPORT_FINISHING_TABLE_H

#include "tools/ppdimport/ppd_model.h"

#include <span>
#include <string_view>

namespace tsypr::ppdimport
{

// A rule for one finishing choice: it applies when the choice's words hold all of `words`.
struct FinishingRule
{
    std::string_view words;   // blank-separated, after Synonyms
    std::string_view keyword; // empty: the choice has no keyword in the print schema
    bool assumed;             // the choice does not tell the position; the usual one is taken
};

// Everything that tells a finishing feature's option and its choices in a PPD file.
struct FinishingTable
{
    std::string_view optionNames; // blank-separated option keywords of PPD files
    std::string_view optionTexts; // blank-separated display texts, as Normalise() gives them
    std::span<const FinishingRule> rules;
};

const FinishingTable& StapleTable();
const FinishingTable& PunchTable();

// The rule for a choice, or null. The display text counts first, the choice name where the text tells nothing.
const FinishingRule* FindFinishingRule(const FinishingTable& table, const PpdChoice& choice);

} // namespace tsypr::ppdimport

#endif
