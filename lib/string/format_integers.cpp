#include "lib/string/format_conversion.h"

#include <algorithm>
#include <charconv>

namespace tsypr::format
{
namespace
{

using DigitRoom = char[24]; // for 64 bits in octal

std::string_view WriteDigits(DigitRoom& room, uint64_t value, int base, bool upper) noexcept
{
    const auto end = std::to_chars(std::begin(room), std::end(room), value, base).ptr;
    if (upper)
    {
        std::transform(room, end, room, [](char c) { return c >= 'a' && c <= 'f' ? static_cast<char>(c - 32) : c; });
    }
    return {room, static_cast<size_t>(end - room)};
}

size_t PrecisionZeros(const Conversion& conversion, std::string_view digits) noexcept
{
    const size_t precision = std::min(conversion.precision, kMaxWidth);
    return conversion.hasPrecision && precision > digits.size() ? precision - digits.size() : 0;
}

void FormatSigned(TextBuffer& out, const Conversion& conversion, uint64_t value, unsigned unused) noexcept
{
    const int64_t number = static_cast<int64_t>(value << unused) >> unused;
    const auto magnitude = static_cast<uint64_t>(number);
    DigitRoom room;
    std::string_view digits = WriteDigits(room, number < 0 ? 0 - magnitude : magnitude, 10, false);
    if (number == 0 && conversion.hasPrecision && conversion.precision == 0)
    {
        digits = {};
    }
    const char* positive = conversion.plus ? "+" : (conversion.blank ? " " : "");
    AppendNumber(out, conversion, number < 0 ? "-" : positive, PrecisionZeros(conversion, digits), digits);
}

void FormatUnsigned(TextBuffer& out, const Conversion& conversion, uint64_t value, unsigned unused) noexcept
{
    const uint64_t number = value << unused >> unused;
    const bool hex = conversion.type == 'x' || conversion.type == 'X';
    const int base = hex ? 16 : (conversion.type == 'o' ? 8 : 10);
    DigitRoom room;
    std::string_view digits = WriteDigits(room, number, base, conversion.type == 'X');
    if (number == 0 && conversion.hasPrecision && conversion.precision == 0)
    {
        digits = {};
    }
    size_t zeros = PrecisionZeros(conversion, digits);
    std::string_view prefix;
    if (conversion.alternate && hex && number != 0)
    {
        prefix = conversion.type == 'X' ? "0X" : "0x";
    }
    else if (conversion.alternate && base == 8 && zeros == 0 && (digits.empty() || digits[0] != '0'))
    {
        zeros = 1;
    }
    AppendNumber(out, conversion, prefix, zeros, digits);
}

} // namespace

void AppendNumber(TextBuffer& out,
                  const Conversion& conversion,
                  std::string_view prefix,
                  size_t zeros,
                  std::string_view digits) noexcept
{
    const size_t length = prefix.size() + zeros + digits.size();
    size_t padding = conversion.width > length ? conversion.width - length : 0;
    if (conversion.zero && !conversion.left && !conversion.hasPrecision)
    {
        zeros += padding;
        padding = 0;
    }
    if (!conversion.left)
    {
        out.AppendFill(' ', padding);
    }
    out.Append(prefix);
    out.AppendFill('0', zeros);
    out.Append(digits);
    if (conversion.left)
    {
        out.AppendFill(' ', padding);
    }
}

void AppendDecimal(TextBuffer& out, int value) noexcept
{
    DigitRoom room = {};
    std::to_chars(std::begin(room), std::end(room), value);
    out.AppendUntil(room, '\0');
}

void AppendHex(TextBuffer& out, unsigned value) noexcept
{
    DigitRoom room = {};
    std::to_chars(std::begin(room), std::end(room), value, 16);
    out.AppendUntil(room, '\0');
}

void FormatInteger(TextBuffer& out, const Conversion& conversion, uint64_t value) noexcept
{
    const unsigned unused = 64U - conversion.integerBits;
    if (conversion.type == 'd' || conversion.type == 'i')
    {
        FormatSigned(out, conversion, value, unused);
    }
    else
    {
        FormatUnsigned(out, conversion, value, unused);
    }
}

void FormatPointer(TextBuffer& out, const Conversion& conversion, const void* value) noexcept
{
    DigitRoom room;
    Conversion field = conversion;
    field.hasPrecision = true;
    field.precision = sizeof(void*) * 2;
    const std::string_view digits = WriteDigits(room, reinterpret_cast<uintptr_t>(value), 16, true);
    AppendNumber(out, field, {}, PrecisionZeros(field, digits), digits);
}

} // namespace tsypr::format
