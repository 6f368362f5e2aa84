#include "lib/misc/clock.h"

#include <chrono>

namespace tsypr
{

using namespace std::chrono;

int64_t UtcNowMilliseconds() noexcept
{
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

int64_t MonotonicMicroseconds() noexcept
{
    return duration_cast<microseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace tsypr
