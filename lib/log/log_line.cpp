#include "lib/log/log_line.h"

#include "lib/misc/clock.h"
#include "lib/misc/process.h"

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

void AppendNumber(TextBuffer& line, char separator, uint32_t number) noexcept
{
    char digits[12] = {separator};
    const char* end = std::to_chars(digits + 1, std::end(digits), number).ptr;
    line.Append(digits, static_cast<size_t>(end - digits));
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
    const Piece pieces[] = {{now.year, 4, '-'},
                            {now.month, 2, '-'},
                            {now.day, 2, ' '},
                            {now.hour, 2, ':'},
                            {now.minute, 2, ':'},
                            {now.second, 2, '.'},
                            {now.millisecond, 3, 'Z'}};
    char time[32];
    char* place = time;
    for (const Piece& piece : pieces)
    {
        place = WriteDigits(place, piece.value, piece.digits);
        *place++ = piece.separator;
    }
    line.Append(time, static_cast<size_t>(place - time));
    line.Append(" ");
    line.Append(levelName);
    AppendNumber(line, ' ', CurrentProcessId());
    AppendNumber(line, ':', CurrentThreadId());
    line.Append(" ");
}

} // namespace tsypr
