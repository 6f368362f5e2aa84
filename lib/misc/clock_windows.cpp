#include "lib/misc/clock.h"
#include "lib/misc/file_time_windows.h"

namespace tsypr
{

int64_t UtcNowMilliseconds() noexcept
{
    FILETIME now;
    GetSystemTimePreciseAsFileTime(&now);
    return ToUtcMilliseconds(now);
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
