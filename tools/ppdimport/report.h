#ifndef TESSARY_TOOLS_PPDIMPORT_REPORT_H
#define TESSARY_TOOLS_PPDIMPORT_REPORT_H

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace tsypr::ppdimport
{

enum class ReportSection
{
    Assumptions,  // what the PPD file does not tell and the importer decided
    Dropped,      // choices that the profile does not have
    VendorNames,  // choices kept under names of the printer's own
    OtherOptions, // options for which a profile has no field
    Constraints,  // forbidden combinations, which a profile cannot tell
};

inline constexpr std::size_t kReportSections = 5;

// Collects what an import could not carry over, and prints it grouped.
class ImportReport
{
public:
    void Add(ReportSection section, std::string line);

    // The lines added to a section so far, in order.
    const std::vector<std::string>& Lines(ReportSection section) const;

    // `summary` leads; sections without lines say so.
    std::string Render(const std::string& summary) const;

private:
    std::array<std::vector<std::string>, kReportSections> m_lines;
};

} // namespace tsypr::ppdimport

#endif
