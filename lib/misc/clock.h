// The time of day as log lines and file names show it, and the time that only goes forward.
#ifndef TESSARY_LIB_MISC_CLOCK_H
#define TESSARY_LIB_MISC_CLOCK_H

#include <cstdint>

namespace tsypr
{

// A UTC calendar time with milliseconds.
struct UtcTime
{
    int year;
    int month; // 1 to 12
    int day;   // 1 to 31
    int hour;
    int minute;
    int second;
    int millisecond;
};

// Milliseconds since 1970-01-01 00:00 UTC.
int64_t UtcNowMilliseconds() noexcept;

// The calendar time of a moment; moments before 1970 are taken as 1970.
UtcTime ToUtcTime(int64_t millisecondsSince1970) noexcept;

// Microseconds since some moment in the past, the same one for the whole process. Never goes back, whatever is done to
// the clock.
int64_t MonotonicMicroseconds() noexcept;

// A moment up to which something may take.
class Deadline
{
public:
    // That many microseconds from now on; negative: never.
    explicit Deadline(int64_t microseconds) noexcept;

    // What is left: 0 when the moment has passed, -1 for a deadline that never comes.
    int64_t RemainingMicroseconds() const noexcept;

    bool Passed() const noexcept
    {
        return RemainingMicroseconds() == 0;
    }

private:
    int64_t m_end = -1; // -1: never
};

} // namespace tsypr

#endif
