#include "tools/ppdimport/paper_table.h"

#include "tools/ppdimport/text.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace tsypr::ppdimport
{
namespace
{

// clang-format off
constexpr StandardPaper kPapers[] = {
    {1, true, "psk:NorthAmericaLetter", 2159, 2794, "letter usletter naletter"},
    {2, false, "", 2159, 2794, "lettersmall"},
    {3, true, "psk:NorthAmericaTabloid", 2794, 4318, "tabloid ledger"},
    {4, false, "", 4318, 2794, "ledger"},
    {5, true, "psk:NorthAmericaLegal", 2159, 3556, "legal uslegal"},
    {6, true, "psk:NorthAmericaStatement", 1397, 2159, "statement halfletter invoice"},
    {7, true, "psk:NorthAmericaExecutive", 1842, 2667, "executive usexecutive"},
    {8, true, "psk:ISOA3", 2970, 4200, "a3"},
    {9, true, "psk:ISOA4", 2100, 2970, "a4"},
    {10, false, "", 2100, 2970, "a4small"},
    {11, true, "psk:ISOA5", 1480, 2100, "a5"},
    {12, true, "psk:JISB4", 2570, 3640, "b4 b4jis jisb4"},
    {13, true, "psk:JISB5", 1820, 2570, "b5 b5jis jisb5"},
    {14, true, "psk:OtherMetricFolio", 2159, 3302, "folio usfolio 85x13"},
    {15, true, "psk:NorthAmericaQuarto", 2150, 2750, "quarto"},
    {16, true, "psk:NorthAmerica10x14", 2540, 3556, "10x14"},
    {17, false, "psk:NorthAmerica11x17", 2794, 4318, "11x17"},
    {18, false, "psk:NorthAmericaNote", 2159, 2794, "note"},
    {19, true, "psk:NorthAmericaNumber9Envelope", 984, 2254, "env9 com9"},
    {20, true, "psk:NorthAmericaNumber10Envelope", 1048, 2413, "env10 com10 comm10 envelope10"},
    {21, true, "psk:NorthAmericaNumber11Envelope", 1143, 2635, "env11"},
    {22, true, "psk:NorthAmericaNumber12Envelope", 1207, 2794, "env12"},
    {23, true, "psk:NorthAmericaNumber14Envelope", 1270, 2921, "env14"},
    {24, true, "psk:NorthAmericaCSheet", 4318, 5588, "ansic"},
    {25, true, "psk:NorthAmericaDSheet", 5588, 8636, "ansid"},
    {26, true, "psk:NorthAmericaESheet", 8636, 11176, "ansie"},
    {27, true, "psk:ISODLEnvelope", 1100, 2200, "envdl dlenv dl"},
    {28, true, "psk:ISOC5Envelope", 1620, 2290, "envc5 c5"},
    {29, true, "psk:ISOC3Envelope", 3240, 4580, "envc3 c3"},
    {30, true, "psk:ISOC4Envelope", 2290, 3240, "envc4 c4"},
    {31, true, "psk:ISOC6Envelope", 1140, 1620, "envc6 c6"},
    {32, true, "psk:ISOC6C5Envelope", 1140, 2290, "envc65 c65"},
    {33, false, "psk:ISOB4Envelope", 2500, 3530, "envisob4 envb4"},
    {34, false, "psk:ISOB5Envelope", 1760, 2500, "envisob5 envb5"},
    {35, false, "", 1760, 1250, "envisob6 envb6"},
    {36, true, "psk:OtherMetricItalianEnvelope", 1100, 2300, "envitalian envitaly"},
    {37, true, "psk:NorthAmericaMonarchEnvelope", 984, 1905, "envmonarch monarch"},
    {38, true, "psk:NorthAmericaPersonalEnvelope", 921, 1651, "envpersonal"},
    {39, true, "", 3778, 2794, "fanfoldus"},
    {40, true, "psk:NorthAmericaGermanStandardFanfold", 2159, 3048, "fanfoldgerman"},
    {41, false, "psk:NorthAmericaGermanLegalFanfold", 2159, 3302, "fanfoldgermanlegal"},
    {42, true, "psk:ISOB4", 2500, 3530, "isob4 b4iso"},
    {43, true, "psk:JapanHagakiPostcard", 1000, 1480, "postcard hagaki jpost"},
    {44, true, "psk:NorthAmerica9x11", 2286, 2794, "9x11"},
    {45, true, "psk:NorthAmerica10x11", 2540, 2794, "10x11"},
    {46, true, "", 3810, 2794, "15x11"},
    {47, true, "psk:OtherMetricInviteEnvelope", 2200, 2200, "envinvite"},
    {50, true, "psk:NorthAmericaLetterExtra", 2413, 3048, "letterextra"},
    {51, true, "psk:NorthAmericaLegalExtra", 2413, 3810, "legalextra"},
    {52, true, "psk:NorthAmericaTabloidExtra", 2969, 4572, "tabloidextra"},
    {53, true, "psk:ISOA4Extra", 2355, 3223, "a4extra"},
    {57, true, "psk:NorthAmericaSuperA", 2270, 3560, "supera"},
    {58, true, "psk:NorthAmericaSuperB", 3050, 4870, "superb"},
    {59, true, "psk:NorthAmericaLetterPlus", 2159, 3223, "letterplus"},
    {60, true, "psk:OtherMetricA4Plus", 2100, 3300, "a4plus"},
    {63, true, "psk:ISOA3Extra", 3220, 4450, "a3extra"},
    {64, true, "psk:ISOA5Extra", 1740, 2350, "a5extra"},
    {65, true, "psk:ISOB5Extra", 2010, 2760, "isob5extra"},
    {66, true, "psk:ISOA2", 4200, 5940, "a2"},
    {69, true, "psk:JapanDoubleHagakiPostcard", 2000, 1480, "doublepostcard jpostd"},
    {70, true, "psk:ISOA6", 1050, 1480, "a6"},
    {71, true, "psk:JapanKaku2Envelope", 2400, 3320, "envkaku2 kakugata2"},
    {72, true, "psk:JapanKaku3Envelope", 2160, 2770, "envkaku3 kakugata3"},
    {73, true, "psk:JapanChou3Envelope", 1200, 2350, "envchou3 chokei3"},
    {74, true, "psk:JapanChou4Envelope", 900, 2050, "envchou4 chokei4"},
    {88, true, "psk:JISB6", 1280, 1820, "b6 b6jis jisb6"},
    {90, true, "", 3048, 2794, "12x11"},
    {91, true, "psk:JapanYou4Envelope", 1050, 2350, "envyou4 yokei4"},
    {93, true, "psk:PRC16K", 1460, 2150, "p16k prc16k"},
    {94, true, "psk:PRC32K", 970, 1510, "p32k prc32k"},
    {96, true, "psk:PRC1Envelope", 1020, 1650, "envprc1"},
    {97, true, "psk:PRC2Envelope", 1020, 1760, "envprc2"},
    {98, true, "psk:PRC3Envelope", 1250, 1760, "envprc3"},
    {99, true, "psk:PRC4Envelope", 1100, 2080, "envprc4"},
    {100, false, "psk:PRC5Envelope", 1100, 2200, "envprc5"},
    {101, true, "psk:PRC6Envelope", 1200, 2300, "envprc6"},
    {102, true, "psk:PRC7Envelope", 1600, 2300, "envprc7"},
    {103, true, "psk:PRC8Envelope", 1200, 3090, "envprc8"},
    {104, false, "psk:PRC9Envelope", 2290, 3240, "envprc9"},
    {105, false, "psk:PRC10Envelope", 3240, 4580, "envprc10"},
    {0, true, "psk:ISOA0", 8410, 11890, "a0"},
    {0, true, "psk:ISOA1", 5940, 8410, "a1"},
    {0, true, "psk:ISOA7", 740, 1050, "a7"},
    {0, true, "psk:ISOSRA3", 3200, 4500, "sra3"},
    {0, true, "psk:JISB1", 7280, 10300, "b1"},
    {0, true, "psk:JISB2", 5150, 7280, "b2"},
    {0, true, "psk:JISB3", 3640, 5150, "b3"},
    {0, true, "psk:NorthAmericaArchitectureASheet", 2286, 3048, "archa 9x12"},
    {0, true, "psk:NorthAmericaArchitectureBSheet", 3048, 4572, "archb 12x18"},
    {0, true, "psk:NorthAmericaArchitectureCSheet", 4572, 6096, "archc"},
    {0, true, "psk:NorthAmericaArchitectureDSheet", 6096, 9144, "archd"},
    {0, true, "psk:NorthAmericaArchitectureESheet", 9144, 12192, "arche"},
    {0, true, "psk:NorthAmerica4x6", 1016, 1524, "4x6 photo4x6"},
    {0, true, "psk:NorthAmerica4x8", 1016, 2032, "4x8"},
    {0, true, "psk:NorthAmerica5x7", 1270, 1778, "5x7"},
    {0, true, "psk:NorthAmerica8x10", 2032, 2540, "8x10 engquatro"},
    {0, true, "psk:NorthAmerica10x12", 2540, 3048, "10x12"},
    {0, true, "psk:NorthAmerica14x17", 3556, 4318, "14x17"},
    {0, false, "psk:JapanYou2Envelope", 1140, 1620, "envyou2 yokei2"},
    {0, true, "psk:JapanLPhoto", 890, 1270, "photol"},
};

constexpr TurnedPaper kTurned[] = {
    {1, 75, "psk:NorthAmericaLetterRotated", 54},
    {8, 76, "psk:ISOA3Rotated", 67},
    {9, 77, "psk:ISOA4Rotated", 55},
    {11, 78, "psk:ISOA5Rotated", 61},
    {12, 79, "psk:JISB4Rotated", 0},
    {13, 80, "psk:JISB5Rotated", 62},
    {43, 81, "psk:JapanHagakiPostcardRotated", 0},
    {69, 82, "psk:JapanDoubleHagakiPostcardRotated", 0},
    {70, 83, "psk:ISOA6Rotated", 0},
    {71, 84, "psk:JapanKaku2EnvelopeRotated", 0},
    {72, 85, "psk:JapanKaku3EnvelopeRotated", 0},
    {73, 86, "psk:JapanChou3EnvelopeRotated", 0},
    {74, 87, "psk:JapanChou4EnvelopeRotated", 0},
    {88, 89, "psk:JISB6Rotated", 0},
    {91, 92, "psk:JapanYou4EnvelopeRotated", 0},
    {93, 106, "psk:PRC16KRotated", 0},
    {94, 107, "psk:PRC32KRotated", 0},
};

struct Suffix
{
    std::string_view text; // as Normalise() gives it
    PaperVariant variant;
    bool separated; // counts only behind a dot, hyphen or underscore
};

constexpr Suffix kSuffixes[] = {
    {"fullbleed", PaperVariant::Borderless, false},
    {"borderless", PaperVariant::Borderless, false},
    {"nomargin", PaperVariant::Borderless, false},
    {"nmgn", PaperVariant::Borderless, true},
    {"etoe", PaperVariant::Borderless, true},
    {"bl", PaperVariant::Borderless, true},
    {"fb", PaperVariant::Borderless, true},
    {"transverse", PaperVariant::Transverse, false},
    {"rotated", PaperVariant::Rotated, false},
    {"r", PaperVariant::Rotated, true},
};
// clang-format on

bool Near(const StandardPaper& paper, int width, int height)
{
    return std::abs(paper.width - width) <= kPaperTolerance && std::abs(paper.height - height) <= kPaperTolerance;
}

template <class Predicate>
const StandardPaper* FindPaper(Predicate matches)
{
    const auto* found = std::find_if(std::begin(kPapers), std::end(kPapers), matches);
    return found != std::end(kPapers) ? found : nullptr;
}

} // namespace

PaperName ParsePaperName(std::string_view choice)
{
    const std::string whole = Normalise(choice);
    const std::string tail = Normalise(choice.substr(choice.find_last_of("._-") + 1));
    for (const Suffix& suffix : kSuffixes)
    {
        const bool hit = suffix.separated ? tail == suffix.text && tail != whole
                                          : whole.ends_with(suffix.text) && whole.size() > suffix.text.size();
        if (hit)
        {
            return {whole.substr(0, whole.size() - suffix.text.size()), suffix.variant};
        }
    }
    return {whole, PaperVariant::Plain};
}

const StandardPaper* FindPaperByName(std::string_view base, int width, int height)
{
    return FindPaper([&](const StandardPaper& paper)
                     { return HasWord(paper.names, base) && Near(paper, width, height); });
}

const StandardPaper* FindPaperBySize(int width, int height)
{
    return FindPaper([&](const StandardPaper& paper) { return paper.bySize && Near(paper, width, height); });
}

const TurnedPaper* FindTurnedPaper(int baseId)
{
    const auto* found = std::find_if(
        std::begin(kTurned), std::end(kTurned), [&](const TurnedPaper& turned) { return turned.baseId == baseId; });
    return found != std::end(kTurned) ? found : nullptr;
}

} // namespace tsypr::ppdimport
