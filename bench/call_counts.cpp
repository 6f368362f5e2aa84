#include "bench/call_counts.h"

namespace tsypr::bench
{

CallCounts CountsFrom(const VpCallCounters& counters) noexcept
{
    CallCounts counts;
    counts.open = static_cast<unsigned>(counters.openRemotePrinter);
    counts.capabilities = static_cast<unsigned>(counters.getDeviceCapabilities);
    counts.freeCapabilities = static_cast<unsigned>(counters.freeDeviceCapabilities);
    counts.getDevMode = static_cast<unsigned>(counters.getDevMode);
    counts.freeDevMode = static_cast<unsigned>(counters.freeDevMode);
    counts.ptQuery = static_cast<unsigned>(counters.makePTQuery);
    counts.freePTData = static_cast<unsigned>(counters.freePTData);
    counts.close = static_cast<unsigned>(counters.closeRemotePrinter);
    counts.leftOpen = static_cast<unsigned>(counters.outstandingHandles + counters.outstandingReplies);
    return counts;
}

std::string DescribeCounts(const CallCounts& counts)
{
    std::string text;
    for (const CallName& call : kCallNames)
    {
        if (counts.*call.count != 0)
        {
            text += (text.empty() ? "" : ", ") + std::string(call.name) + ' ' + std::to_string(counts.*call.count);
        }
    }
    return text.empty() ? "none" : text;
}

} // namespace tsypr::bench
