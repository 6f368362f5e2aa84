#include "lib/misc/clock.h"

#include <chrono>

#ifdef _WIN32
#include <windows.h>
#endif

namespace tsypr
{

int64_t UtcNowMilliseconds() noexcept
{
#ifdef _WIN32
    constexpr int64_t kTicksPerMillisecond = 10'000;
    constexpr int64_t kTicksTo1970 = 116'444'736'000'000'000;
    FILETIME now;
    GetSystemTimePreciseAsFileTime(&now);
    const auto ticks = (static_cast<uint64_t>(now.dwHighDateTime) << 32) | now.dwLowDateTime;
    return (static_cast<int64_t>(ticks) - kTicksTo1970) / kTicksPerMillisecond;
#else
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
#endif
}

UtcTime ToUtcTime(int64_t millisecondsSince1970) noexcept
{
    using namespace std::chrono;
    const milliseconds moment(millisecondsSince1970 < 0 ? 0 : millisecondsSince1970);
    const auto days = duration_cast<std::chrono::days>(moment);
    const year_month_day date{sys_days(days)};
    const hh_mm_ss time(moment - days);
    return {static_cast<int>(date.year()),
            static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day())),
            static_cast<int>(time.hours().count()),
            static_cast<int>(time.minutes().count()),
            static_cast<int>(time.seconds().count()),
            static_cast<int>(time.subseconds().count())};
}

} // namespace tsypr
