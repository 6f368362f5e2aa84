#ifndef TESSARY_TOOLS_PPDIMPORT_PPD_MODEL_H
#define TESSARY_TOOLS_PPDIMPORT_PPD_MODEL_H

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tsypr::ppdimport
{

struct PpdChoice
{
    std::string name; // the keyword of the PPD file, ASCII
    std::string text; // what a user reads, UTF-8
};

struct PpdOption
{
    std::string keyword;
    std::string text;
    std::string group; // the group's display text
    std::string defaultChoice;
    bool installable = false; // describes fitted hardware, not a job setting
    std::vector<PpdChoice> choices;
};

// Lengths in points.
struct PpdSize
{
    double width = 0;
    double length = 0;
};

struct PpdCustomSize
{
    PpdSize minimum;
    PpdSize maximum;
};

struct PpdConstraint
{
    std::string firstOption;
    std::string secondOption;
};

// What the importer needs of one PPD file, free of the library that read it. Texts are UTF-8 without control
// characters.
struct PpdModel
{
    std::string fileName; // without folders
    std::string nickname;
    std::string modelName;
    std::string manufacturer;
    std::string language;
    bool colorDevice = false;
    int throughput = 0; // pages per minute, 0 when not told
    std::vector<PpdOption> options;
    std::map<std::string, PpdSize> sizes; // by choice name of PageSize
    std::optional<PpdCustomSize> customSize;
    std::vector<PpdConstraint> constraints;
    std::map<std::string, std::string> attributes; // the plain keywords ReadPpd() keeps
};

} // namespace tsypr::ppdimport

#endif
