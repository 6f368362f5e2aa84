#ifndef TESSARY_TOOLS_PPDIMPORT_IMPORT_CONTEXT_H
#define TESSARY_TOOLS_PPDIMPORT_IMPORT_CONTEXT_H

#include "tools/ppdimport/ppd_model.h"
#include "tools/ppdimport/profile.h"
#include "tools/ppdimport/report.h"

#include <set>
#include <string>
#include <string_view>

namespace tsypr::ppdimport
{

// What the steps of one import share: the file, the report, and which options have been used so far.
class ImportContext
{
public:
    ImportContext(const PpdModel& ppd, ImportReport& report);

    const PpdModel& Ppd() const;

    void Report(ReportSection section, std::string line) const;

    // The first job option among the blank-separated keywords that the file has, marked as used; null when it has none.
    const PpdOption* Take(std::string_view keywords);

    // The same by display text, as Normalise() gives it.
    const PpdOption* TakeByText(std::string_view texts);

    // Marks an option that another one repeats.
    void MarkUsed(const std::string& keyword);

    bool IsUsed(const std::string& keyword) const;

private:
    const PpdModel& m_ppd;
    ImportReport& m_report;
    std::set<std::string> m_used;
};

// "Keyword=Name (Text)" for the report.
std::string Describe(const PpdOption& option, const PpdChoice& choice);

// A keyword of the printer's own that is not yet in `taken`; adds it there.
std::string UniqueVendorKeyword(std::string_view kind, std::string_view name, std::set<std::string>& taken);

// The steps of an import; each fills its fields of the profile and reports what it had to leave out.
void ImportPapers(ImportContext& context, PrinterProfile& profile);
void ImportBins(ImportContext& context, PrinterProfile& profile);
void ImportMediaTypes(ImportContext& context, PrinterProfile& profile);
void ImportResolutions(ImportContext& context, PrinterProfile& profile);
void ImportDuplexColorCollate(ImportContext& context, PrinterProfile& profile);
void ImportNup(ImportContext& context, PrinterProfile& profile, bool composedByClient);
void ImportFinishing(ImportContext& context, PrinterProfile& profile);

} // namespace tsypr::ppdimport

#endif
