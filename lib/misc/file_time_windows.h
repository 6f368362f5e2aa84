// Moments as Windows counts them.
#ifndef TESSARY_LIB_MISC_FILE_TIME_WINDOWS_H
#define TESSARY_LIB_MISC_FILE_TIME_WINDOWS_H

#include <windows.h>

#include <cstdint>

namespace tsypr
{

// Milliseconds since 1970-01-01 00:00 UTC; negative before.
inline int64_t ToUtcMilliseconds(const FILETIME& moment) noexcept
{
    constexpr int64_t kTicksPerMillisecond = 10'000;
    constexpr int64_t kTicksTo1970 = 116'444'736'000'000'000;
    const auto ticks = static_cast<int64_t>((uint64_t{moment.dwHighDateTime} << 32) | moment.dwLowDateTime);
    return (ticks - kTicksTo1970) / kTicksPerMillisecond;
}

} // namespace tsypr

#endif
