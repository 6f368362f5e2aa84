#ifndef TESSARY_TOOLS_PPDIMPORT_SETTINGS_TABLE_H
#define TESSARY_TOOLS_PPDIMPORT_SETTINGS_TABLE_H

#include <span>
#include <string_view>

namespace tsypr::ppdimport
{

// One value of a setting and the PPD choices that mean it.
struct SettingValue
{
    std::string_view value;
    std::string_view names; // blank-separated choice names and texts, as Normalise() gives them
};

// A setting with fixed values and the options of PPD files that carry it.
struct SettingTable
{
    std::string_view optionNames; // blank-separated option keywords, the most telling first
    std::span<const SettingValue> values;
};

const SettingTable& DuplexTable();
const SettingTable& ColorTable(); // values "monochrome" and "color"
const SettingTable& QualityTable();
const SettingTable& CollateTable(); // values "off" and "on"

// Option keywords whose choices are numbers: resolutions and pages per sheet.
std::string_view ResolutionOptionNames();
std::string_view NupOptionNames();

} // namespace tsypr::ppdimport

#endif
