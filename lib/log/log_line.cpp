#include "lib/log/log_line.h"

#include "lib/misc/clock.h"
#include "lib/misc/process.h"

#include <charconv>
#include <cstring>
#include <iterator>

namespace tsypr
{
namespace
{

constexpr std::string_view kLevelNames[] = {
    "audit", "panic", "error", "warning", "notice", "info", "verbose", "trivia", "debug", "debug1"};

// Writes `digits` decimal digits of `value` and the separator, and returns the place behind them.
template <int digits>
char* Write(char* place, int value, char separator) noexcept
{
    for (int i = digits - 1; i >= 0; --i)
    {
        place[i] = static_cast<char>('0' + value % 10);
        value /= 10;
    }
    place[digits] = separator;
    return place + digits + 1;
}

char* WriteTime(char* place, int64_t moment) noexcept
{
    const UtcTime time = ToUtcTime(moment);
    place = Write<4>(place, time.year, '-');
    place = Write<2>(place, time.month, '-');
    place = Write<2>(place, time.day, ' ');
    place = Write<2>(place, time.hour, ':');
    place = Write<2>(place, time.minute, ':');
    place = Write<2>(place, time.second, '.');
    return Write<3>(place, time.millisecond, 'Z');
}

} // namespace

std::string_view LogLevelName(int level) noexcept
{
    return kLevelNames[static_cast<size_t>(level) % std::size(kLevelNames)];
}

void AppendLinePrefix(TextBuffer& line, int level, int64_t now) noexcept
{
    constexpr size_t kMostDigits = 10;
    char prefix[80]; // all of it has at most 55 characters
    char* place = WriteTime(prefix, now);
    *place++ = ' ';
    const std::string_view name = LogLevelName(level);
    std::memcpy(place, name.data(), name.size());
    place += name.size();
    *place++ = ' ';
    place = std::to_chars(place, place + kMostDigits, CurrentProcessId()).ptr;
    *place++ = ':';
    place = std::to_chars(place, place + kMostDigits, CurrentThreadId()).ptr;
    *place++ = ' ';
    line.Append(prefix, static_cast<size_t>(place - prefix));
}

void AppendFormat(TextBuffer& line, const char* format, ...) noexcept
{
    va_list arguments;
    va_start(arguments, format);
    FormatTo(line, format, arguments);
    va_end(arguments);
}

} // namespace tsypr
