// Device modes in words and as JSON.
#ifndef TESSARY_PRINTCTL_DEVMODE_REPORT_H
#define TESSARY_PRINTCTL_DEVMODE_REPORT_H

#include "tools/printctl/devmode_fields.h"
#include "tools/printctl/json.h"

#include <optional>
#include <string>
#include <vector>

namespace tsypr::printctl
{

// What became of one field in a merge.
struct FieldChange
{
    const Field* field;
    std::optional<FieldValue> before;
    std::optional<FieldValue> requested; // nothing when the field was not asked for
    std::optional<FieldValue> result;

    bool Applied() const
    {
        return requested == result;
    }
};

// The fields that were asked to change or did change. A public field counts as asked for when its dmFields bit is set
// in the request, a private one when its value differs from before.
std::vector<FieldChange> CompareMerge(const DevModeBuffer& before,
                                      const DevModeBuffer& requested,
                                      const DevModeBuffer& result);

// The fields that differ. Nothing counts as asked for.
std::vector<FieldChange> CompareSettings(const DevModeBuffer& before, const DevModeBuffer& result);

Json DevModeJson(const DevModeBuffer& dm, const PrinterChoices& choices);
std::string DevModeText(const DevModeBuffer& dm, const PrinterChoices& choices);

Json ChangesJson(const std::vector<FieldChange>& changes, const PrinterChoices& choices);
std::string ChangesText(const std::vector<FieldChange>& changes, const PrinterChoices& choices);

// A table of the fields with the values before and after.
std::string DifferencesText(const std::vector<FieldChange>& changes, const PrinterChoices& choices);

} // namespace tsypr::printctl

#endif
