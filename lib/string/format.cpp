#include "lib/string/format.h"

#include "lib/unicode/utf16.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace tsypr
{
namespace
{

enum class Size
{
    Default,
    Char,
    Short,
    Long,
    LongLong,
    Max,
    SizeT,
    PtrDiff,
    Bits32,
    Bits64,
    LongDouble
};

struct Conversion
{
    bool left = false;
    bool plus = false;
    bool blank = false;
    bool alternate = false;
    bool zero = false;
    size_t width = 0;
    bool hasPrecision = false;
    size_t precision = 0;
    Size size = Size::Default;
    char type = '\0';
};

// A va_list that may be handed on by reference, which the bare type does not allow on every platform.
struct Arguments
{
    va_list list;
};

// No text of ours is wider; a corrupt width must not make a line of gigabytes.
constexpr size_t kMaxWidth = 4096;

bool IsDigit(char c) noexcept
{
    return c >= '0' && c <= '9';
}

size_t ParseNumber(const char*& p) noexcept
{
    size_t number = 0;
    for (; IsDigit(*p); ++p)
    {
        number = std::min<size_t>(number * 10 + static_cast<size_t>(*p - '0'), INT_MAX);
    }
    return number;
}

bool ParseFlag(char c, Conversion& conversion) noexcept
{
    switch (c)
    {
    case '-':
        conversion.left = true;
        return true;
    case '+':
        conversion.plus = true;
        return true;
    case ' ':
        conversion.blank = true;
        return true;
    case '#':
        conversion.alternate = true;
        return true;
    case '0':
        conversion.zero = true;
        return true;
    default:
        return false;
    }
}

void ParseWidth(const char*& p, Conversion& conversion, Arguments& arguments) noexcept
{
    if (*p == '*')
    {
        ++p;
        const int width = va_arg(arguments.list, int);
        conversion.left = conversion.left || width < 0;
        conversion.width = width < 0 ? 0U - static_cast<unsigned>(width) : static_cast<unsigned>(width);
    }
    else
    {
        conversion.width = ParseNumber(p);
    }
    conversion.width = std::min(conversion.width, kMaxWidth);
}

void ParsePrecision(const char*& p, Conversion& conversion, Arguments& arguments) noexcept
{
    if (*p != '.')
    {
        return;
    }
    ++p;
    conversion.hasPrecision = true;
    if (*p != '*')
    {
        conversion.precision = ParseNumber(p);
        return;
    }
    ++p;
    const int precision = va_arg(arguments.list, int);
    conversion.hasPrecision = precision >= 0;
    conversion.precision = precision < 0 ? 0 : static_cast<size_t>(precision);
}

struct SizePrefix
{
    Size size;
    size_t length; // in the format
};

// Looked up character by character: every conversion of every log line comes through here.
SizePrefix FindSize(const char* p) noexcept
{
    const bool twice = p[0] != '\0' && p[1] == p[0];
    switch (*p)
    {
    case 'h':
        return twice ? SizePrefix{Size::Char, 2} : SizePrefix{Size::Short, 1};
    case 'l':
        return twice ? SizePrefix{Size::LongLong, 2} : SizePrefix{Size::Long, 1};
    case 'j':
        return {Size::Max, 1};
    case 'z':
        return {Size::SizeT, 1};
    case 't':
        return {Size::PtrDiff, 1};
    case 'L':
        return {Size::LongDouble, 1};
    case 'I':
        if (p[1] == '6' && p[2] == '4')
        {
            return {Size::Bits64, 3};
        }
        if (p[1] == '3' && p[2] == '2')
        {
            return {Size::Bits32, 3};
        }
        break;
    default:
        break;
    }
    return {Size::Default, 0};
}

void ParseSize(const char*& p, Conversion& conversion) noexcept
{
    const SizePrefix prefix = FindSize(p);
    conversion.size = prefix.size;
    p += prefix.length;
}

long long TakeSigned(Size size, Arguments& arguments) noexcept
{
    switch (size)
    {
    case Size::Char:
        return static_cast<signed char>(va_arg(arguments.list, int));
    case Size::Short:
        return static_cast<short>(va_arg(arguments.list, int));
    case Size::Long:
        return va_arg(arguments.list, long);
    case Size::LongLong:
    case Size::Bits64:
        return va_arg(arguments.list, long long);
    case Size::Max:
        return va_arg(arguments.list, intmax_t);
    case Size::SizeT:
    case Size::PtrDiff:
        return va_arg(arguments.list, ptrdiff_t);
    default:
        return va_arg(arguments.list, int);
    }
}

unsigned long long TakeUnsigned(Size size, Arguments& arguments) noexcept
{
    switch (size)
    {
    case Size::Char:
        return static_cast<unsigned char>(va_arg(arguments.list, unsigned));
    case Size::Short:
        return static_cast<unsigned short>(va_arg(arguments.list, unsigned));
    case Size::Long:
        return va_arg(arguments.list, unsigned long);
    case Size::LongLong:
    case Size::Bits64:
        return va_arg(arguments.list, unsigned long long);
    case Size::Max:
        return va_arg(arguments.list, uintmax_t);
    case Size::SizeT:
    case Size::PtrDiff:
        return va_arg(arguments.list, size_t);
    default:
        return va_arg(arguments.list, unsigned);
    }
}

// Puts sign or prefix, then zeros, then digits into the field.
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

std::string_view WriteDigits(char (&buffer)[72], unsigned long long value, int base, bool upper) noexcept
{
    const auto end = std::to_chars(std::begin(buffer), std::end(buffer), value, base).ptr;
    if (upper)
    {
        std::transform(
            buffer, end, buffer, [](char c) { return c >= 'a' && c <= 'f' ? static_cast<char>(c - 32) : c; });
    }
    return {buffer, static_cast<size_t>(end - buffer)};
}

size_t PrecisionZeros(const Conversion& conversion, std::string_view digits) noexcept
{
    const size_t precision = std::min(conversion.precision, kMaxWidth);
    return conversion.hasPrecision && precision > digits.size() ? precision - digits.size() : 0;
}

void FormatSigned(TextBuffer& out, const Conversion& conversion, Arguments& arguments) noexcept
{
    const long long value = TakeSigned(conversion.size, arguments);
    const auto magnitude = static_cast<unsigned long long>(value);
    char buffer[72];
    std::string_view digits = WriteDigits(buffer, value < 0 ? 0ULL - magnitude : magnitude, 10, false);
    if (value == 0 && conversion.hasPrecision && conversion.precision == 0)
    {
        digits = {};
    }
    const char* positive = conversion.plus ? "+" : (conversion.blank ? " " : "");
    AppendNumber(out, conversion, value < 0 ? "-" : positive, PrecisionZeros(conversion, digits), digits);
}

void FormatUnsigned(TextBuffer& out, const Conversion& conversion, Arguments& arguments) noexcept
{
    const unsigned long long value = TakeUnsigned(conversion.size, arguments);
    const bool hex = conversion.type == 'x' || conversion.type == 'X';
    const int base = hex ? 16 : (conversion.type == 'o' ? 8 : 10);
    char buffer[72];
    std::string_view digits = WriteDigits(buffer, value, base, conversion.type == 'X');
    if (value == 0 && conversion.hasPrecision && conversion.precision == 0)
    {
        digits = {};
    }
    size_t zeros = PrecisionZeros(conversion, digits);
    std::string_view prefix;
    if (conversion.alternate && hex && value != 0)
    {
        prefix = conversion.type == 'X' ? "0X" : "0x";
    }
    else if (conversion.alternate && base == 8 && zeros == 0 && (digits.empty() || digits[0] != '0'))
    {
        zeros = 1;
    }
    AppendNumber(out, conversion, prefix, zeros, digits);
}

void FormatPointer(TextBuffer& out, Conversion conversion, Arguments& arguments) noexcept
{
    const auto value = reinterpret_cast<uintptr_t>(va_arg(arguments.list, void*));
    char buffer[72];
    const std::string_view digits = WriteDigits(buffer, value, 16, true);
    conversion.hasPrecision = true;
    conversion.precision = sizeof(void*) * 2;
    AppendNumber(out, conversion, {}, PrecisionZeros(conversion, digits), digits);
}

void AppendPadded(TextBuffer& out, const Conversion& conversion, std::string_view text) noexcept
{
    const size_t padding = conversion.width > text.size() ? conversion.width - text.size() : 0;
    if (!conversion.left)
    {
        out.AppendFill(' ', padding);
    }
    out.Append(text);
    if (conversion.left)
    {
        out.AppendFill(' ', padding);
    }
}

// The longest start of `text` of at most `length` bytes that ends between two characters.
size_t WholeCharacters(const char* text, size_t length) noexcept
{
    size_t end = length;
    size_t back = 0;
    while (end > 0 && back < kMaxUtf8Bytes && (static_cast<unsigned char>(text[end - 1]) & 0xC0) == 0x80)
    {
        --end;
        ++back;
    }
    if (end == 0)
    {
        return length; // no lead byte in reach: not UTF-8, leave it as it is
    }
    const auto lead = static_cast<unsigned char>(text[end - 1]);
    const size_t need = lead >= 0xF0 ? 4 : (lead >= 0xE0 ? 3 : (lead >= 0xC0 ? 2 : 1));
    return need > back + 1 ? end - 1 : length;
}

void FormatText(TextBuffer& out, const Conversion& conversion, const char* text) noexcept
{
    if (text == nullptr)
    {
        text = "(null)";
    }
    if (!conversion.hasPrecision)
    {
        AppendPadded(out, conversion, text);
        return;
    }
    const void* end = std::memchr(text, '\0', conversion.precision);
    const size_t length = end != nullptr ? static_cast<size_t>(static_cast<const char*>(end) - text)
                                         : WholeCharacters(text, conversion.precision);
    AppendPadded(out, conversion, {text, length});
}

// Calls `take(bytes, count)` for every character of the UTF-16 text, up to `limit` bytes of UTF-8.
template <typename Take>
void ForEachCharacter(const Utf16Unit* text, size_t limit, Take&& take) noexcept
{
    size_t used = 0;
    for (size_t i = 0; used < limit && text[i] != 0;)
    {
        const uint32_t first = text[i];
        // With less than three bytes left neither the pair nor U+FFFD fits: the next unit need not be read.
        const bool pair = IsHighSurrogate(first) && limit - used > 2;
        size_t units = 1;
        const uint32_t codePoint = DecodeUtf16(first, pair ? text[i + 1] : 0, units);
        char bytes[kMaxUtf8Bytes];
        const size_t count = EncodeUtf8(codePoint, bytes);
        if (count > limit - used)
        {
            return;
        }
        take(bytes, count);
        used += count;
        i += units;
    }
}

size_t AppendAsciiRun(TextBuffer& out, const Utf16Unit* text) noexcept
{
    char run[128];
    size_t length = 0;
    while (length < sizeof(run) && text[length] != 0 && text[length] < 0x80)
    {
        run[length] = static_cast<char>(text[length]);
        ++length;
    }
    out.Append(run, length);
    return length;
}

void AppendWhole(TextBuffer& out, const Utf16Unit* text) noexcept
{
    while (true)
    {
        size_t taken = 0;
        while ((taken = AppendAsciiRun(out, text)) != 0)
        {
            text += taken;
        }
        if (*text == 0)
        {
            return;
        }
        size_t units = 1;
        char bytes[kMaxUtf8Bytes];
        out.Append(bytes, EncodeUtf8(DecodeUtf16(text[0], text[1], units), bytes));
        text += units;
    }
}

void FormatWideText(TextBuffer& out, const Conversion& conversion, const Utf16Unit* text) noexcept
{
    if (text == nullptr)
    {
        FormatText(out, conversion, nullptr);
        return;
    }
    if (conversion.width == 0 && !conversion.hasPrecision)
    {
        AppendWhole(out, text);
        return;
    }
    const size_t limit = conversion.hasPrecision ? conversion.precision : SIZE_MAX;
    size_t length = 0;
    ForEachCharacter(text, limit, [&](const char*, size_t count) { length += count; });
    const size_t padding = conversion.width > length ? conversion.width - length : 0;
    if (!conversion.left)
    {
        out.AppendFill(' ', padding);
    }
    ForEachCharacter(text, limit, [&](const char* bytes, size_t count) { out.Append(bytes, count); });
    if (conversion.left)
    {
        out.AppendFill(' ', padding);
    }
}

void FormatCharacter(TextBuffer& out, const Conversion& conversion, Arguments& arguments) noexcept
{
    const int value = va_arg(arguments.list, int);
    if (conversion.type == 'C' || conversion.size == Size::Long)
    {
        size_t units = 1;
        char bytes[kMaxUtf8Bytes];
        const size_t count = EncodeUtf8(DecodeUtf16(static_cast<uint16_t>(value), 0, units), bytes);
        AppendPadded(out, conversion, {bytes, count});
        return;
    }
    const char character = static_cast<char>(value);
    AppendPadded(out, conversion, {&character, 1});
}

// Floating point goes through the C library, whose decimal point follows the locale; ours does not.
void FormatFloat(TextBuffer& out, const Conversion& conversion, Arguments& arguments) noexcept
{
    const double value = conversion.size == Size::LongDouble ? static_cast<double>(va_arg(arguments.list, long double))
                                                             : va_arg(arguments.list, double);
    char format[16];
    char* p = format;
    *p++ = '%';
    for (const auto& [set, flag] :
         {std::pair{conversion.plus, '+'}, std::pair{conversion.blank, ' '}, std::pair{conversion.alternate, '#'}})
    {
        if (set)
        {
            *p++ = flag;
        }
    }
    const bool precise = conversion.hasPrecision;
    if (precise)
    {
        *p++ = '.';
        *p++ = '*';
    }
    *p++ = conversion.type;
    *p = '\0';
    char text[1200];
    const int precision = static_cast<int>(std::min<size_t>(conversion.precision, 512));
    const int written = precise ? std::snprintf(text, sizeof(text), format, precision, value) // NOLINT
                                : std::snprintf(text, sizeof(text), format, value);           // NOLINT
    const size_t length = written < 0 ? 0 : std::min(static_cast<size_t>(written), sizeof(text) - 1);
    std::replace(text, text + length, ',', '.');
    const bool finite = length != 0 && (IsDigit(text[length - 1]) || text[length - 1] == '.');
    const size_t sign = length != 0 && !IsDigit(text[0]) && finite ? 1 : 0;
    const bool hex = finite && (conversion.type == 'a' || conversion.type == 'A');
    const size_t prefix = sign + (hex ? 2 : 0); // zeros go behind the "0x"
    Conversion field = conversion;
    field.hasPrecision = !finite; // "inf" and "nan" are never filled with zeros
    AppendNumber(out, field, {text, prefix}, 0, {text + prefix, length - prefix});
}

// Formats one conversion; false when it is not known.
bool FormatOne(TextBuffer& out, const Conversion& conversion, Arguments& arguments) noexcept
{
    switch (conversion.type)
    {
    case 'd':
    case 'i':
        FormatSigned(out, conversion, arguments);
        return true;
    case 'u':
    case 'x':
    case 'X':
    case 'o':
        FormatUnsigned(out, conversion, arguments);
        return true;
    case 'c':
    case 'C':
        FormatCharacter(out, conversion, arguments);
        return true;
    case 's':
        if (conversion.size != Size::Long)
        {
            FormatText(out, conversion, va_arg(arguments.list, const char*));
            return true;
        }
        [[fallthrough]];
    case 'S':
        FormatWideText(out, conversion, va_arg(arguments.list, const Utf16Unit*));
        return true;
    case 'p':
        FormatPointer(out, conversion, arguments);
        return true;
    case 'n':
        (void)va_arg(arguments.list, void*);
        return true;
    case '%':
        out.Append("%", 1);
        return true;
    default:
        if (conversion.type != '\0' && std::strchr("fFeEgGaA", conversion.type) != nullptr)
        {
            FormatFloat(out, conversion, arguments);
            return true;
        }
        return false;
    }
}

// Handles the conversion that starts at the "%" of `start`; returns where the format goes on.
const char* FormatConversion(TextBuffer& out, const char* start, Arguments& arguments) noexcept
{
    Conversion conversion;
    const char* p = start + 1;
    while (ParseFlag(*p, conversion))
    {
        ++p;
    }
    ParseWidth(p, conversion, arguments);
    ParsePrecision(p, conversion, arguments);
    ParseSize(p, conversion);
    conversion.type = *p;
    if (FormatOne(out, conversion, arguments))
    {
        return p + 1;
    }
    const char* end = *p == '\0' ? p : p + 1;
    out.Append(start, static_cast<size_t>(end - start));
    return end;
}

} // namespace

void FormatTo(TextBuffer& out, const char* format, va_list arguments) noexcept
{
    if (format == nullptr)
    {
        return;
    }
    Arguments own;
    va_copy(own.list, arguments);
    while (*format != '\0')
    {
        const char* percent = std::strchr(format, '%');
        const size_t plain = percent != nullptr ? static_cast<size_t>(percent - format) : std::strlen(format);
        out.Append(format, plain);
        format += plain;
        if (percent != nullptr)
        {
            format = FormatConversion(out, percent, own);
        }
    }
    va_end(own.list);
}

size_t FormatFixed(char* buffer, size_t capacity, const char* format, ...) noexcept
{
    if (buffer == nullptr || capacity == 0)
    {
        return 0;
    }
    TextBuffer out(buffer, capacity - 1);
    va_list arguments;
    va_start(arguments, format);
    FormatTo(out, format, arguments);
    va_end(arguments);
    if (out.Cut())
    {
        out.Truncate(WholeCharacters(buffer, out.View().size()));
    }
    buffer[out.View().size()] = '\0';
    return out.View().size();
}

} // namespace tsypr
