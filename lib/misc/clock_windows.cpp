#include "lib/misc/clock.h"

#include <windows.h>

namespace tsypr
{

int64_t UtcNowMilliseconds() noexcept
{
    constexpr int64_t kTicksPerMillisecond = 10'000;
    constexpr int64_t kTicksTo1970 = 116'444'736'000'000'000;
    FILETIME now;
    GetSystemTimePreciseAsFileTime(&now);
    const auto ticks = (static_cast<uint64_t>(now.dwHighDateTime) << 32) | now.dwLowDateTime;
    return (static_cast<int64_t>(ticks) - kTicksTo1970) / kTicksPerMillisecond;
}

int64_t MonotonicMicroseconds() noexcept
{
    constexpr int64_t kPerSecond = 1'000'000;
    LARGE_INTEGER ticks;
    LARGE_INTEGER frequency;
    QueryPerformanceCounter(&ticks);
    QueryPerformanceFrequency(&frequency);
    const int64_t seconds = ticks.QuadPart / frequency.QuadPart;
    return seconds * kPerSecond + ticks.QuadPart % frequency.QuadPart * kPerSecond / frequency.QuadPart;
}

} // namespace tsypr
