#include "lib/string/decimal.h"
#include "lib/string/format_conversion.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>

namespace tsypr::format
{
namespace
{

constexpr size_t kDefaultPrecision = 6;
constexpr size_t kHexDigits = 13; // of a double, behind the point

// Digits and point; the longest has all digits of the largest number and then the longest precision.
using Room = char[kMaxWidth + 320];

bool IsUpper(char type) noexcept
{
    return type < 'a';
}

size_t PrecisionOf(const Conversion& conversion) noexcept
{
    return conversion.hasPrecision ? std::min(conversion.precision, kMaxWidth) : kDefaultPrecision;
}

void AppendPoint(TextBuffer& out, bool point) noexcept
{
    if (point)
    {
        out.Append(".", 1);
    }
}

void AppendDigits(TextBuffer& out, const Decimal& number, size_t first, size_t count) noexcept
{
    const size_t given = first < number.Count() ? std::min(count, number.Count() - first) : 0;
    for (size_t i = 0; i < given; ++i)
    {
        const char digit = number.Digit(first + i);
        out.Append(&digit, 1);
    }
    out.AppendFill('0', count - given);
}

// "e+05" or "p-3".
void AppendExponent(TextBuffer& out, char letter, int exponent, size_t leastDigits) noexcept
{
    const char start[2] = {letter, exponent < 0 ? '-' : '+'};
    out.Append(start, sizeof(start));
    char digits[8];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), std::abs(exponent)).ptr;
    const auto count = static_cast<size_t>(end - digits);
    out.AppendFill('0', leastDigits > count ? leastDigits - count : 0);
    out.Append(digits, count);
}

void WriteFixed(TextBuffer& out, const Decimal& number, size_t precision, bool alternate) noexcept
{
    const auto whole = static_cast<size_t>(std::max(number.IsZero() ? 0 : number.Point(), 0));
    if (whole == 0)
    {
        out.Append("0", 1);
    }
    AppendDigits(out, number, 0, whole);
    AppendPoint(out, precision != 0 || alternate);
    const auto gap = static_cast<size_t>(number.Point() < 0 ? -number.Point() : 0);
    const size_t zeros = number.IsZero() ? precision : std::min(gap, precision);
    out.AppendFill('0', zeros);
    AppendDigits(out, number, whole, precision - zeros);
}

void WriteScientific(TextBuffer& out, const Decimal& number, size_t precision, bool alternate, bool upper) noexcept
{
    AppendDigits(out, number, 0, 1);
    AppendPoint(out, precision != 0 || alternate);
    AppendDigits(out, number, 1, precision);
    AppendExponent(out, upper ? 'E' : 'e', number.IsZero() ? 0 : number.Point() - 1, 2);
}

// The shorter of the two, as the exponent asks; zeros at the end stay only in the alternate form.
void WriteGeneral(TextBuffer& out, Decimal& number, const Conversion& conversion) noexcept
{
    const auto digits = static_cast<long long>(std::max<size_t>(PrecisionOf(conversion), 1));
    number.Round(digits);
    const int exponent = number.IsZero() ? 0 : number.Point() - 1;
    const bool all = conversion.alternate;
    const auto significant = all ? digits : static_cast<long long>(std::max<size_t>(number.Count(), 1));
    if (exponent >= -4 && exponent < digits)
    {
        WriteFixed(out, number, static_cast<size_t>(std::max(significant - 1 - exponent, 0LL)), all);
        return;
    }
    WriteScientific(out, number, static_cast<size_t>(significant - 1), all, IsUpper(conversion.type));
}

void WriteDecimal(TextBuffer& out, double magnitude, const Conversion& conversion) noexcept
{
    Decimal number(magnitude);
    const size_t precision = PrecisionOf(conversion);
    switch (conversion.type)
    {
    case 'f':
    case 'F':
        number.Round(number.Point() + static_cast<long long>(precision));
        WriteFixed(out, number, precision, conversion.alternate);
        break;
    case 'e':
    case 'E':
        number.Round(static_cast<long long>(precision) + 1);
        WriteScientific(out, number, precision, conversion.alternate, IsUpper(conversion.type));
        break;
    default:
        WriteGeneral(out, number, conversion);
        break;
    }
}

// Rounds the 52 bits behind the point to `digits` hexadecimal ones, from the middle to the even one.
uint64_t RoundHex(uint64_t mantissa, size_t digits) noexcept
{
    const size_t shift = (kHexDigits - digits) * 4;
    const uint64_t half = 1ULL << (shift - 1);
    const uint64_t rest = mantissa & ((half << 1) - 1);
    const uint64_t kept = mantissa >> shift;
    const bool up = rest > half || (rest == half && (kept & 1) != 0);
    return (kept + (up ? 1 : 0)) << shift;
}

// A normal number starts with 1 (2 when it was rounded up to that), one below the normal range with 0.
void WriteHex(TextBuffer& out, double magnitude, const Conversion& conversion) noexcept
{
    const auto bits = std::bit_cast<uint64_t>(magnitude);
    const int field = static_cast<int>(bits >> 52);
    uint64_t mantissa = (bits & 0xFFFFFFFFFFFFF) | (field != 0 ? 1ULL << 52 : 0);
    const int exponent = mantissa == 0 ? 0 : std::max(field, 1) - 1023;
    const size_t precision = std::min(conversion.precision, kMaxWidth);
    if (conversion.hasPrecision && precision < kHexDigits)
    {
        mantissa = RoundHex(mantissa, precision);
    }
    const char* digits = IsUpper(conversion.type) ? "0123456789ABCDEF" : "0123456789abcdef";
    out.Append(digits + (mantissa >> 52), 1);
    mantissa &= 0xFFFFFFFFFFFFF;
    const size_t needed = mantissa == 0 ? 0 : kHexDigits - static_cast<size_t>(std::countr_zero(mantissa)) / 4;
    const size_t count = conversion.hasPrecision ? precision : needed;
    AppendPoint(out, count != 0 || conversion.alternate);
    for (size_t i = 0; i < std::min(count, kHexDigits); ++i)
    {
        out.Append(digits + (mantissa >> (48 - 4 * i) & 0xF), 1);
    }
    out.AppendFill('0', count > kHexDigits ? count - kHexDigits : 0);
    AppendExponent(out, IsUpper(conversion.type) ? 'P' : 'p', exponent, 1);
}

} // namespace

void FormatFloat(TextBuffer& out, const Conversion& conversion, double value) noexcept
{
    const bool upper = IsUpper(conversion.type);
    const bool negative = std::signbit(value) && !std::isnan(value);
    char prefix[3];
    size_t prefixLength = 0;
    if (negative || conversion.plus || conversion.blank)
    {
        prefix[prefixLength++] = negative ? '-' : (conversion.plus ? '+' : ' ');
    }
    Conversion field = conversion;
    field.hasPrecision = false; // zeros may fill the field
    if (!std::isfinite(value))
    {
        const char* name = std::isnan(value) ? (upper ? "NAN" : "nan") : (upper ? "INF" : "inf");
        field.zero = false;
        AppendNumber(out, field, {prefix, prefixLength}, 0, name);
        return;
    }
    Room room; // NOLINT(cppcoreguidelines-pro-type-member-init)
    TextBuffer text(room, sizeof(room));
    if (conversion.type == 'a' || conversion.type == 'A')
    {
        prefix[prefixLength++] = '0';
        prefix[prefixLength++] = upper ? 'X' : 'x';
        WriteHex(text, std::fabs(value), conversion);
    }
    else
    {
        WriteDecimal(text, std::fabs(value), conversion);
    }
    AppendNumber(out, field, {prefix, prefixLength}, 0, text.View());
}

} // namespace tsypr::format
