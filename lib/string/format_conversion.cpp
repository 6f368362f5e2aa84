#include "lib/string/format_conversion.h"

#include <algorithm>
#include <array>
#include <climits>

namespace tsypr::format
{
namespace
{

enum class Size : uint8_t
{
    Default,
    Char,
    Short,
    Long,
    LongLong,
    Max,
    SizeT,
    PtrDiff,
    LongDouble
};

constexpr bool IsDigit(char c) noexcept
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

// Takes "12$"; returns false, with `p` where it was, when that is not what stands there.
bool ParseArgumentNumber(const char*& p, size_t& number) noexcept
{
    const char* after = p;
    number = ParseNumber(after);
    if (after == p || *after != '$')
    {
        return false;
    }
    p = after + 1;
    return true;
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

// Takes the "*" or "*1$" at `p`; false when it does not count its arguments the way the conversion does.
bool ParseStar(const char*& p, const Conversion& conversion, Star& star) noexcept
{
    ++p;
    size_t number = 0;
    const bool numbered = ParseArgumentNumber(p, number);
    star.given = true;
    star.number = static_cast<uint8_t>(std::min<size_t>(number, UINT8_MAX));
    return numbered == conversion.numbered && (!numbered || number != 0);
}

bool ParseWidth(const char*& p, Conversion& conversion) noexcept
{
    if (*p == '*')
    {
        return ParseStar(p, conversion, conversion.starWidth);
    }
    conversion.width = std::min(ParseNumber(p), kMaxWidth);
    return true;
}

bool ParsePrecision(const char*& p, Conversion& conversion) noexcept
{
    if (*p != '.')
    {
        return true;
    }
    ++p;
    if (*p == '*')
    {
        return ParseStar(p, conversion, conversion.starPrecision);
    }
    conversion.hasPrecision = true;
    conversion.precision = ParseNumber(p);
    return true;
}

Size ParseSize(const char*& p) noexcept
{
    const auto take = [&p](size_t length, Size size)
    {
        p += length;
        return size;
    };
    const bool twice = p[0] != '\0' && p[1] == p[0];
    switch (*p)
    {
    case 'h':
        return twice ? take(2, Size::Char) : take(1, Size::Short);
    case 'l':
        return twice ? take(2, Size::LongLong) : take(1, Size::Long);
    case 'j':
        return take(1, Size::Max);
    case 'z':
        return take(1, Size::SizeT);
    case 't':
        return take(1, Size::PtrDiff);
    case 'L':
        return take(1, Size::LongDouble);
    case 'I':
        if (p[1] == '6' && p[2] == '4')
        {
            return take(3, Size::LongLong);
        }
        return p[1] == '3' && p[2] == '2' ? take(3, Size::Default) : Size::Default;
    default:
        return Size::Default;
    }
}

struct Integer
{
    Kind kind;
    size_t bytes;
};

constexpr Integer IntegerOf(Size size) noexcept
{
    switch (size)
    {
    case Size::Char:
        return {Kind::Int, 1};
    case Size::Short:
        return {Kind::Int, sizeof(short)};
    case Size::Long:
        return {Kind::Long, sizeof(long)};
    case Size::LongLong:
    case Size::LongDouble:
        return {Kind::LongLong, sizeof(long long)};
    case Size::Max:
        return {Kind::Max, sizeof(intmax_t)};
    case Size::SizeT:
        return {Kind::SizeT, sizeof(size_t)};
    case Size::PtrDiff:
        return {Kind::PtrDiff, sizeof(ptrdiff_t)};
    default:
        return {Kind::Int, sizeof(int)};
    }
}

// How the argument of a type of conversion is passed when no size is given.
constexpr auto kKindOfType = []
{
    std::array<Kind, 128> kinds{};
    for (const char c : std::string_view("diuxXocC"))
    {
        kinds[static_cast<unsigned char>(c)] = Kind::Int;
    }
    for (const char c : std::string_view("fFeEgGaA"))
    {
        kinds[static_cast<unsigned char>(c)] = Kind::Double;
    }
    kinds['s'] = Kind::Text;
    kinds['S'] = Kind::WideText;
    kinds['p'] = Kind::Pointer;
    kinds['n'] = Kind::Pointer;
    return kinds;
}();

Kind KindOfType(char type) noexcept
{
    const auto index = static_cast<unsigned char>(type);
    return index < kKindOfType.size() ? kKindOfType[index] : Kind::None;
}

void SetType(Conversion& conversion, char type, Size size) noexcept
{
    conversion.type = type;
    conversion.kind = KindOfType(type);
    switch (conversion.kind)
    {
    case Kind::Int:
        if (type == 'c' || type == 'C')
        {
            conversion.type = size == Size::Long ? 'C' : type;
        }
        else
        {
            const Integer integer = IntegerOf(size);
            conversion.kind = integer.kind;
            conversion.integerBits = static_cast<uint8_t>(integer.bytes * CHAR_BIT);
        }
        break;
    case Kind::Double:
        conversion.kind = size == Size::LongDouble ? Kind::LongDouble : Kind::Double;
        break;
    case Kind::Text:
        conversion.kind = size == Size::Long ? Kind::WideText : Kind::Text;
        break;
    default:
        break;
    }
}

// The conversion at `p` with everything that it may have.
const char* ParseWhole(const char* p, Conversion& conversion) noexcept
{
    size_t number = 0;
    conversion.numbered = ParseArgumentNumber(p, number);
    conversion.number = static_cast<uint8_t>(std::min<size_t>(number, UINT8_MAX));
    bool known = !conversion.numbered || number != 0;
    while (ParseFlag(*p, conversion))
    {
        ++p;
    }
    known = ParseWidth(p, conversion) && known;
    known = ParsePrecision(p, conversion) && known;
    const Size size = ParseSize(p);
    SetType(conversion, *p, size);
    if (!known || (conversion.numbered && conversion.type == '%'))
    {
        conversion.kind = Kind::None;
        conversion.type = '\0';
    }
    return *p == '\0' ? p : p + 1;
}

} // namespace

// Most conversions are a single letter, and every conversion of every log line comes through here.
const char* ParseConversion(const char* p, Conversion& conversion) noexcept
{
    const Kind kind = KindOfType(*p);
    if (kind == Kind::None)
    {
        return ParseWhole(p, conversion);
    }
    conversion.kind = kind;
    conversion.type = *p;
    conversion.integerBits = sizeof(int) * CHAR_BIT;
    return p + 1;
}

void SetWidth(Conversion& conversion, int width) noexcept
{
    conversion.left = conversion.left || width < 0;
    const size_t magnitude = width < 0 ? 0U - static_cast<unsigned>(width) : static_cast<unsigned>(width);
    conversion.width = std::min(magnitude, kMaxWidth);
}

void SetPrecision(Conversion& conversion, int precision) noexcept
{
    conversion.hasPrecision = precision >= 0;
    conversion.precision = precision < 0 ? 0 : static_cast<size_t>(precision);
}

} // namespace tsypr::format
