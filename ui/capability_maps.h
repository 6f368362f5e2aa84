// What the printers of this process offer for N-up and finishing, as their print capabilities said last.
#ifndef TESSARY_UI_CAPABILITY_MAPS_H
#define TESSARY_UI_CAPABILITY_MAPS_H

#include "lib/misc/exclusive_lock.h"
#include "printschema/pt_parser.h"

#include <map>
#include <optional>
#include <string>
#include <utility>

namespace tsypr
{

// Printer name to capability. Entries stay for as long as the module is loaded. Two sheets may be open at once, so
// readers get copies. Running out of memory throws std::bad_alloc and changes nothing.
template <typename Capability>
class CapabilityMap
{
public:
    void Store(const std::wstring& printerName, Capability capability)
    {
        const ScopedLock guard(m_lock);
        m_entries[printerName] = std::move(capability);
    }

    // Empty when the printer has no entry.
    std::optional<Capability> Find(const std::wstring& printerName)
    {
        const ScopedLock guard(m_lock);
        const auto entry = m_entries.find(printerName);
        return entry != m_entries.end() ? std::optional<Capability>(entry->second) : std::nullopt;
    }

private:
    ExclusiveLock m_lock;
    std::map<std::wstring, Capability> m_entries;
};

// Filled by the capability prefetch under the name in the device mode's private block, read under the context's name.
extern CapabilityMap<NupCapability> NupCapabilities;
extern CapabilityMap<FinishingCapability> FinishingCapabilities;

} // namespace tsypr

#endif
