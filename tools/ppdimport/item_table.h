#ifndef TESSARY_TOOLS_PPDIMPORT_ITEM_TABLE_H
#define TESSARY_TOOLS_PPDIMPORT_ITEM_TABLE_H

#include <span>
#include <string_view>

namespace tsypr::ppdimport
{

// A paper source or media type that Windows or the print schema names.
struct StandardItem
{
    int id;                   // DMBIN_* or DMMEDIA_*, 0 when Windows has none
    std::string_view keyword; // empty when the print schema has none
    std::string_view names;   // blank-separated choice names and texts of PPD files, as Normalise() gives them
};

std::span<const StandardItem> StandardBins();
std::span<const StandardItem> StandardMediaTypes();

} // namespace tsypr::ppdimport

#endif
