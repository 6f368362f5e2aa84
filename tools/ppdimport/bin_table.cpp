#include "tools/ppdimport/item_table.h"

namespace tsypr::ppdimport
{
namespace
{

// Numbered trays are the printer's own: Windows' upper, middle and lower tray would only guess at their places.
// clang-format off
constexpr StandardItem kBins[] = {
    {7, "psk:AutoSelect", "auto autoselect automatic automaticallyselect autotrayselect automatictrayselect "
                          "printerautoselection"},
    {6, "", "manualenv manualenvelope manualenvelopefeed envmanual"},
    {4, "psk:Manual", "manual manualfeed manualfeeder manualpaper manualtray bypass bypasstray paperbypass multitray "
                      "multipurpose multipurposetray multipurposefeeder mptray mpt mf mf1"},
    {11, "", "largecapacity largecapacitytray largecapacitycassette largecapacityfeeder lct lcc"},
    {5, "", "envelope envelopefeeder envfeeder"},
    {8, "psk:Tractor", "tractor tractorfeed tractorfeeder"},
    {9, "", "smallformat smallfmt"},
    {10, "", "largeformat largefmt"},
    {14, "psk:Cassette", "cassette papercassette"},
    {1, "", "upper uppertray uppercassette"},
    {3, "", "middle middletray middlecassette"},
    {2, "", "lower lowertray lowercassette"},
};
// clang-format on

} // namespace

std::span<const StandardItem> StandardBins()
{
    return kBins;
}

} // namespace tsypr::ppdimport
