#include "tools/ppdimport/settings_table.h"

namespace tsypr::ppdimport
{
namespace
{

constexpr SettingValue kDuplexValues[] = {
    {"simplex", "none off false simplex 1sided"},
    {"vertical", "duplexnotumble notumble longedge fliponlongedge"},
    {"horizontal", "duplextumble tumble shortedge fliponshortedge"},
};
constexpr SettingTable kDuplex = {"Duplex JCLDuplex ARDuplex EFDuplex EFDuplexing KD03Duplex", kDuplexValues};

constexpr SettingValue kColorValues[] = {
    {"monochrome", "gray grey grayscale greyscale kgray black blackandwhite mono monochrome bw cmbw falsem"},
    {"color", "cmyk rgb cmy cmky color colour auto automatic cmcolor cmauto truem fullcolor"},
};
constexpr SettingTable kColor = {"ColorModel ColorMode ARCMode CNColorMode SelectColor HPColorMode", kColorValues};

constexpr SettingValue kQualityValues[] = {
    {"draft", "draft fast fastdraft economy everyday"},
    {"low", "fastnormal low"},
    {"medium", "normal standard medium 600dpi"},
    {"high", "high best fine highresolution 1200dpi maximum"},
};
constexpr SettingTable kQuality = {"cupsPrintQuality PrintQuality Quality OutputMode", kQualityValues};

constexpr SettingValue kCollateValues[] = {
    {"off", "false off no uncollated"},
    {"on", "true on yes collated"},
};
constexpr SettingTable kCollate = {"Collate JCLCollate OKCollate ARCollate CNCollate", kCollateValues};

} // namespace

const SettingTable& DuplexTable()
{
    return kDuplex;
}

const SettingTable& ColorTable()
{
    return kColor;
}

const SettingTable& QualityTable()
{
    return kQuality;
}

const SettingTable& CollateTable()
{
    return kCollate;
}

std::string_view ResolutionOptionNames()
{
    return "Resolution JCLResolution SetResolution LXResolution CN_DPI";
}

std::string_view NupOptionNames()
{
    return "Nup NUp NUP NupOption JCLNup KCNup PagesPerSheet NumberUp number-up MultiPages HPNup CNNup LXNup ARNUp "
           "BRNup";
}

} // namespace tsypr::ppdimport
