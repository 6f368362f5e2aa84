#ifndef TESSARY_TOOLS_PPDIMPORT_PROFILE_H
#define TESSARY_TOOLS_PPDIMPORT_PROFILE_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tsypr::ppdimport
{

// One paper source or media type.
struct ProfileItem
{
    int id = 0;
    std::string name;
    std::string keyword;
};

// Lengths in tenths of a millimetre.
struct ProfilePaper
{
    int id = 0;
    std::string name;
    std::string keyword;
    int width = 0;
    int height = 0;
};

struct ProfileCustomPaper
{
    int minWidth = 0;
    int minHeight = 0;
    int maxWidth = 0;
    int maxHeight = 0;
};

struct ProfileResolution
{
    int x = 0;
    int y = 0;

    bool operator==(const ProfileResolution&) const = default;
};

struct ProfileNup
{
    std::vector<int> pagesPerSheet;
    std::vector<std::string> directions;
};

// Keywords of one finishing feature; empty when the printer lacks it.
struct ProfileFinishing
{
    std::vector<std::string> keywords;
    std::string defaultKeyword = "psk:None";
};

// A printer profile as the JSON file holds it; see the profile documentation for the meaning of each field.
struct PrinterProfile
{
    std::string name;
    std::string manufacturer;
    std::string model;
    std::string vendorNamespace;

    std::vector<ProfilePaper> papers;
    std::size_t defaultPaper = 0; // position in papers
    std::optional<ProfileCustomPaper> customPaper;
    std::vector<ProfileItem> bins;
    std::optional<int> defaultBin; // identifier
    std::vector<ProfileItem> mediaTypes;
    std::optional<int> defaultMediaType; // identifier
    std::vector<ProfileResolution> resolutions;
    std::optional<ProfileResolution> defaultResolution;
    std::vector<std::string> qualityLevels;
    std::string defaultQuality;
    std::vector<std::string> duplex;
    std::string defaultDuplex = "simplex";
    bool color = false;
    bool defaultColor = false;
    bool collation = false;
    bool defaultCollate = false;
    int landscapeRotation = 90;
    int maxCopies = 1;
    int pagesPerMinute = 0;
    std::optional<ProfileNup> nup;
    ProfileFinishing staple;
    ProfileFinishing punch;
    std::vector<std::string> locked;
};

// The profile as a JSON document with a line break at its end; the same profile always gives the same bytes.
std::string ToJson(const PrinterProfile& profile);

} // namespace tsypr::ppdimport

#endif
