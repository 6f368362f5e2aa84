#include "lib/log/log_line.h"

#include "lib/misc/clock.h"
#include "lib/misc/process.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace tsypr
{
namespace
{

// Writes `digits` decimal digits of `value` and returns the place behind them.
char* WriteDigits(char* place, int value, int digits) noexcept
{
    for (int i = digits - 1; i >= 0; --i)
    {
        place[i] = static_cast<char>('0' + value % 10);
        value /= 10;
    }
    return place + digits;
}

} // namespace

void AppendLinePrefix(TextBuffer& line, std::string_view levelName) noexcept
{
    const UtcTime now = ToUtcTime(UtcNowMilliseconds());
    struct Piece
    {
        int value;
        int digits;
        char separator;
    };
    const Piece pieces[] = {{now.year, 4, '-'},  {now.month, 2, '-'},  {now.day, 2, ' '},        {now.hour, 2, ':'},
                            {now.minute, 2, ':'}, {now.second, 2, '.'}, {now.millisecond, 3, 'Z'}};
    char prefix[96];
    char* place = prefix;
    for (const Piece& piece : pieces)
    {
        place = WriteDigits(place, piece.value, piece.digits);
        *place++ = piece.separator;
    }
    *place++ = ' ';
    place = std::copy(levelName.begin(), levelName.end(), place);
    *place++ = ' ';
    place = std::to_chars(place, std::end(prefix), CurrentProcessId()).ptr;
    *place++ = ':';
    place = std::to_chars(place, std::end(prefix), CurrentThreadId()).ptr;
    *place++ = ' ';
    line.Append(prefix, static_cast<size_t>(place - prefix));
}

} // namespace tsypr
