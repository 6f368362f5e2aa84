#ifndef TESSARY_TOOLS_PPDIMPORT_TEXT_H
#define TESSARY_TOOLS_PPDIMPORT_TEXT_H

#include <cstddef>
#include <set>
#include <string>
#include <string_view>

namespace tsypr::ppdimport
{

// UTF-8 without control characters, runs of blanks as one, none at the ends. Bytes that are not UTF-8 as a whole are
// taken as Latin-1.
std::string CleanText(std::string_view text);

// At most `limit` UTF-16 units of a UTF-8 text, the measure of Windows' name fields; never part of a character.
std::string CutText(std::string_view text, std::size_t limit);

// Number of UTF-16 units of a UTF-8 text.
std::size_t TextLength(std::string_view text);

// The letters and digits of a text in lower case, without anything in round brackets: "Plain (60 - 81 g/m2)" and
// "plain" compare equal.
std::string Normalise(std::string_view text);

// Whether `word` is one of the blank-separated words of `list`.
bool HasWord(std::string_view list, std::string_view word);

// The words of a text in lower case, split at blanks, punctuation, case changes and digits: "UpperLeft" and "upper
// left" give the same set.
std::set<std::string> Words(std::string_view text);

// A print schema keyword in the printer's own namespace, "ns0000:" and a valid XML name made of `name`; `kind` leads
// when `name` would not begin with a letter.
std::string VendorKeyword(std::string_view kind, std::string_view name);

} // namespace tsypr::ppdimport

#endif
