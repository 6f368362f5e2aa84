#ifndef TESSARY_TOOLS_PPDIMPORT_PAPER_TABLE_H
#define TESSARY_TOOLS_PPDIMPORT_PAPER_TABLE_H

#include <string>
#include <string_view>

namespace tsypr::ppdimport
{

// A paper that Windows or the print schema names. Lengths in tenths of a millimetre.
struct StandardPaper
{
    int id;                   // DMPAPER_*, 0 when Windows has none
    bool bySize;              // may be recognised by its size alone
    std::string_view keyword; // empty when the print schema has none
    int width;
    int height;
    std::string_view names; // blank-separated choice names of PPD files, as Normalise() gives them
};

// The turned forms of a paper: Windows counts them as papers of their own.
struct TurnedPaper
{
    int baseId;
    int rotatedId;
    std::string_view rotatedKeyword;
    int transverseId; // 0 when Windows has none
};

enum class PaperVariant
{
    Plain,
    Borderless, // the same sheet, printed to its edges
    Transverse, // the same sheet, fed by its long edge
    Rotated,    // width and height exchanged
};

struct PaperName
{
    std::string base; // as Normalise() gives it, without the variant's suffix
    PaperVariant variant = PaperVariant::Plain;
};

// How far a PPD file's size may be off the standard's.
inline constexpr int kPaperTolerance = 10;

// Splits a PageSize choice name such as "A4.FullBleed".
PaperName ParsePaperName(std::string_view choice);

// The standard paper of that name whose size is within the tolerance, or null.
const StandardPaper* FindPaperByName(std::string_view base, int width, int height);

// The first standard paper known by its size alone that is within the tolerance, or null.
const StandardPaper* FindPaperBySize(int width, int height);

// The turned forms of the paper with this DMPAPER_* identifier, or null.
const TurnedPaper* FindTurnedPaper(int baseId);

} // namespace tsypr::ppdimport

#endif
