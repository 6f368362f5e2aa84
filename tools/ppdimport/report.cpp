#include "tools/ppdimport/report.h"

#include <utility>

namespace tsypr::ppdimport
{
namespace
{

constexpr const char* kTitles[kReportSections] = {
    "Assumptions (not told by the PPD file)",
    "Choices left out of the profile",
    "Choices kept under names of the printer's own",
    "Options without a field in the profile",
    "Forbidden combinations the profile cannot tell",
};

std::size_t Index(ReportSection section)
{
    return static_cast<std::size_t>(section);
}

} // namespace

void ImportReport::Add(ReportSection section, std::string line)
{
    m_lines[Index(section)].push_back(std::move(line));
}

const std::vector<std::string>& ImportReport::Lines(ReportSection section) const
{
    return m_lines[Index(section)];
}

std::string ImportReport::Render(const std::string& summary) const
{
    std::string text = summary;
    for (std::size_t i = 0; i < kReportSections; ++i)
    {
        text += std::string("\n") + kTitles[i] + "\n";
        for (const std::string& line : m_lines[i])
        {
            text += "  " + line + "\n";
        }
        if (m_lines[i].empty())
        {
            text += "  none\n";
        }
    }
    return text;
}

} // namespace tsypr::ppdimport
