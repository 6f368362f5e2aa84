// How long an operation is tried again while another process holds a file.
#ifndef TESSARY_LIB_FILE_RETRY_POLICY_H
#define TESSARY_LIB_FILE_RETRY_POLICY_H

#include <cstdint>

namespace tsypr
{

// Pauses double from the first to the longest until the time is used up. Only what passes by itself is retried: a file
// in use by another process (virus scanners, indexers, backup), on Windows also "access denied" for a file that is
// being deleted or replaced. A pause of 0 counts as 1; a longest pause below the first one is the only one.
struct RetryPolicy
{
    uint32_t firstPauseMs = 1;
    uint32_t longestPauseMs = 100;
    uint32_t totalMs = 1000; // 0: a single attempt
};

inline constexpr RetryPolicy kNoRetry{0, 0, 0};

} // namespace tsypr

#endif
