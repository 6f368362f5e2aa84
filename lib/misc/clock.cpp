#include "lib/misc/clock.h"

#include <chrono>
#include <limits>

namespace tsypr
{

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

Deadline::Deadline(int64_t microseconds) noexcept
{
    if (microseconds >= 0)
    {
        const int64_t now = MonotonicMicroseconds();
        m_end = microseconds < std::numeric_limits<int64_t>::max() - now ? now + microseconds
                                                                         : std::numeric_limits<int64_t>::max();
    }
}

int64_t Deadline::RemainingMicroseconds() const noexcept
{
    if (m_end < 0)
    {
        return -1;
    }
    const int64_t remaining = m_end - MonotonicMicroseconds();
    return remaining < 0 ? 0 : remaining;
}

} // namespace tsypr
