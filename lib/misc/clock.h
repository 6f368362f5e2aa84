// The time of day as log lines and file names show it.
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

} // namespace tsypr

#endif
