// Where a conversion's arguments come from: the next one, or the one with a number.
#include "lib/string/format_conversion.h"

#include <cstring>

namespace tsypr::format
{
namespace
{

// Arguments can only be fetched in order and by their kind, so all of them are fetched before the first is used.
class NumberedArguments
{
public:
    // Notes how the conversion's arguments are passed; what the first use of an argument says holds.
    void Note(const Conversion& conversion) noexcept
    {
        Note(conversion.number, conversion.kind);
        Note(conversion.starWidth.number, Kind::Int);
        Note(conversion.starPrecision.number, Kind::Int);
    }

    // Behind an argument that nothing mentions none can be found: its size is not known.
    void Fetch(Arguments& arguments) noexcept
    {
        while (m_count < kMaxArguments && m_kinds[m_count] != Kind::None)
        {
            m_values[m_count] = TakeArgument(m_kinds[m_count], arguments);
            ++m_count;
        }
    }

    // The argument with the number, from 1 on; null when there is none of the kind.
    const Value* Find(size_t number, Kind kind) const noexcept
    {
        return number != 0 && number <= m_count && m_kinds[number - 1] == kind ? &m_values[number - 1] : nullptr;
    }

private:
    void Note(size_t number, Kind kind) noexcept
    {
        if (number != 0 && number <= kMaxArguments && m_kinds[number - 1] == Kind::None)
        {
            m_kinds[number - 1] = kind;
        }
    }

    Kind m_kinds[kMaxArguments] = {};
    Value m_values[kMaxArguments] = {};
    size_t m_count = 0;
};

// Returns whether all arguments were found and the conversion was done.
bool FormatOne(TextBuffer& out, Conversion& conversion, const NumberedArguments& arguments) noexcept
{
    if (conversion.kind == Kind::None || !conversion.numbered)
    {
        return false;
    }
    const Value* width = arguments.Find(conversion.starWidth.number, Kind::Int);
    const Value* precision = arguments.Find(conversion.starPrecision.number, Kind::Int);
    const Value* value = arguments.Find(conversion.number, conversion.kind);
    if (value == nullptr || (conversion.starWidth.given && width == nullptr) ||
        (conversion.starPrecision.given && precision == nullptr))
    {
        return false;
    }
    if (width != nullptr)
    {
        SetWidth(conversion, static_cast<int>(width->number));
    }
    if (precision != nullptr)
    {
        SetPrecision(conversion, static_cast<int>(precision->number));
    }
    FormatValue(out, conversion, *value);
    return true;
}

} // namespace

// An integer of the type, widened with its sign whatever that means to the conversion.
template <typename T>
static Value TakeInteger(Arguments& arguments) noexcept
{
    Value value;
    value.number = static_cast<uint64_t>(static_cast<int64_t>(va_arg(arguments.list, T)));
    return value;
}

Value TakeArgument(Kind kind, Arguments& arguments) noexcept
{
    Value value;
    switch (kind)
    {
    case Kind::Int:
        return TakeInteger<int>(arguments);
    case Kind::Long:
        return TakeInteger<long>(arguments);
    case Kind::LongLong:
        return TakeInteger<long long>(arguments);
    case Kind::Max:
        return TakeInteger<intmax_t>(arguments);
    case Kind::SizeT:
        return TakeInteger<size_t>(arguments);
    case Kind::PtrDiff:
        return TakeInteger<ptrdiff_t>(arguments);
    case Kind::Double:
        value.real = va_arg(arguments.list, double);
        return value;
    case Kind::LongDouble:
        value.real = static_cast<double>(va_arg(arguments.list, long double));
        return value;
    default:
        value.pointer = va_arg(arguments.list, const void*);
        return value;
    }
}

void FormatNumbered(TextBuffer& out, const char* format, Arguments& arguments) noexcept
{
    NumberedArguments found;
    for (const char* p = std::strchr(format, '%'); p != nullptr; p = std::strchr(p, '%'))
    {
        Conversion conversion;
        p = ParseConversion(p + 1, conversion);
        if (conversion.numbered && conversion.kind != Kind::None)
        {
            found.Note(conversion);
        }
    }
    found.Fetch(arguments);
    for (const char* p = format; *p != '\0';)
    {
        p = out.AppendUntil(p, '%');
        if (*p == '\0')
        {
            return;
        }
        Conversion conversion;
        const char* after = ParseConversion(p + 1, conversion);
        if (conversion.type == '%')
        {
            out.Append('%');
        }
        else if (!FormatOne(out, conversion, found))
        {
            out.Append(p, static_cast<size_t>(after - p));
        }
        p = after;
    }
}

} // namespace tsypr::format
