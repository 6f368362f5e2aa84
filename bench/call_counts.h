// The service's counts of the calls that it got.
#ifndef TESSARY_BENCH_CALL_COUNTS_H
#define TESSARY_BENCH_CALL_COUNTS_H

#include "service/vp_api.h"

#include <string>

namespace tsypr::bench
{

// In the order in which they are spoken of.
struct CallCounts
{
    unsigned open = 0;
    unsigned capabilities = 0;
    unsigned freeCapabilities = 0;
    unsigned getDevMode = 0;
    unsigned freeDevMode = 0;
    unsigned ptQuery = 0;
    unsigned freePTData = 0;
    unsigned close = 0;
    unsigned leftOpen = 0; // handles and replies that were never given back

    bool operator==(const CallCounts&) const = default;
};

struct CallName
{
    const char* name;
    unsigned CallCounts::*count;
};

inline constexpr CallName kCallNames[] = {{"open", &CallCounts::open},
                                          {"capabilities", &CallCounts::capabilities},
                                          {"freecaps", &CallCounts::freeCapabilities},
                                          {"getdevmode", &CallCounts::getDevMode},
                                          {"freedevmode", &CallCounts::freeDevMode},
                                          {"ptquery", &CallCounts::ptQuery},
                                          {"freeptdata", &CallCounts::freePTData},
                                          {"close", &CallCounts::close},
                                          {"leftopen", &CallCounts::leftOpen}};

CallCounts CountsFrom(const VpCallCounters& counters) noexcept;

// "open 1, capabilities 1, close 1", or "none".
std::string DescribeCounts(const CallCounts& counts);

} // namespace tsypr::bench

#endif
