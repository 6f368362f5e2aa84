#include "lib/string/format.h"

#include "lib/string/format_conversion.h"

namespace tsypr
{
namespace format
{

void FormatValue(TextBuffer& out, const Conversion& conversion, Value value) noexcept
{
    switch (conversion.kind)
    {
    case Kind::None:
        break;
    case Kind::Double:
    case Kind::LongDouble:
        FormatFloat(out, conversion, value.real);
        break;
    case Kind::Text:
        FormatText(out, conversion, value.pointer);
        break;
    case Kind::WideText:
        FormatWideText(out, conversion, value.pointer);
        break;
    case Kind::Pointer:
        if (conversion.type == 'p')
        {
            FormatPointer(out, conversion, value.pointer);
        }
        break; // "%n" would write where a corrupt format tells it to
    default:
        if (conversion.type == 'c' || conversion.type == 'C')
        {
            FormatCharacter(out, conversion, value.number);
        }
        else
        {
            FormatInteger(out, conversion, value.number);
        }
        break;
    }
}

namespace
{

// Handles a conversion that takes the next arguments.
void FormatNext(TextBuffer& out, Conversion& conversion, Arguments& arguments) noexcept
{
    if (conversion.starWidth.given)
    {
        SetWidth(conversion, va_arg(arguments.list, int));
    }
    if (conversion.starPrecision.given)
    {
        SetPrecision(conversion, va_arg(arguments.list, int));
    }
    FormatValue(out, conversion, TakeArgument(conversion.kind, arguments));
}

// Handles the conversions of which messages are made, when they come without anything else; false for all others.
bool FormatPlain(TextBuffer& out, char type, Arguments& arguments) noexcept
{
    switch (type)
    {
    case 's':
        AppendText(out, va_arg(arguments.list, const char*));
        return true;
    case 'S':
        AppendWideText(out, va_arg(arguments.list, const Utf16Unit*));
        return true;
    case 'd':
        AppendDecimal(out, va_arg(arguments.list, int));
        return true;
    case 'x':
        AppendHex(out, va_arg(arguments.list, unsigned));
        return true;
    default:
        return false;
    }
}

void FormatAll(TextBuffer& out, const char* format, Arguments& arguments) noexcept
{
    bool tookArguments = false;
    while (true)
    {
        const char* percent = out.AppendUntil(format, '%');
        if (*percent == '\0')
        {
            return;
        }
        if (FormatPlain(out, percent[1], arguments))
        {
            tookArguments = true;
            format = percent + 2;
            continue;
        }
        Conversion conversion;
        const char* after = ParseConversion(percent + 1, conversion);
        if (conversion.numbered && !tookArguments && conversion.kind != Kind::None)
        {
            FormatNumbered(out, percent, arguments);
            return;
        }
        if (conversion.kind != Kind::None && !conversion.numbered)
        {
            FormatNext(out, conversion, arguments);
            tookArguments = true;
        }
        else if (conversion.type == '%')
        {
            out.Append('%');
        }
        else
        {
            out.Append(percent, static_cast<size_t>(after - percent));
        }
        format = after;
    }
}

} // namespace
} // namespace format

void FormatTo(TextBuffer& out, const char* format, va_list arguments) noexcept
{
    if (format == nullptr)
    {
        return;
    }
    format::Arguments own;
    va_copy(own.list, arguments);
    format::FormatAll(out, format, own);
    va_end(own.list);
}

size_t FormatFixedV(char* buffer, size_t capacity, const char* format, va_list arguments) noexcept
{
    if (buffer == nullptr || capacity == 0)
    {
        return 0;
    }
    TextBuffer out(buffer, capacity - 1);
    FormatTo(out, format, arguments);
    if (out.Cut())
    {
        out.Truncate(WholeCharacters(buffer, out.View().size()));
    }
    buffer[out.View().size()] = '\0';
    return out.View().size();
}

size_t FormatFixed(char* buffer, size_t capacity, const char* format, ...) noexcept
{
    va_list arguments;
    va_start(arguments, format);
    const size_t length = FormatFixedV(buffer, capacity, format, arguments);
    va_end(arguments);
    return length;
}

bool FormatStringV(std::string& text, const char* format, va_list arguments) noexcept
{
    text.clear();
    TextBuffer out;
    FormatTo(out, format, arguments);
    if (out.Cut())
    {
        return false;
    }
    try
    {
        text.assign(out.View());
        return true;
    }
    catch (...)
    {
        return false;
    }
}

bool FormatString(std::string& text, const char* format, ...) noexcept
{
    va_list arguments;
    va_start(arguments, format);
    const bool whole = FormatStringV(text, format, arguments);
    va_end(arguments);
    return whole;
}

} // namespace tsypr
