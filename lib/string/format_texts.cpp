#include "lib/string/format_conversion.h"
#include "lib/unicode/utf16.h"

#include <algorithm>
#include <cstring>

namespace tsypr::format
{
namespace
{

constexpr std::string_view kNullText = "(null)";
constexpr std::string_view kReplacementUtf8 = "\xEF\xBF\xBD";

void AppendPadded(TextBuffer& out, const Conversion& conversion, std::string_view text, std::string_view more) noexcept
{
    const size_t length = text.size() + more.size();
    const size_t padding = conversion.width > length ? conversion.width - length : 0;
    if (!conversion.left)
    {
        out.AppendFill(' ', padding);
    }
    out.Append(text);
    out.Append(more);
    if (conversion.left)
    {
        out.AppendFill(' ', padding);
    }
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

} // namespace

void AppendText(TextBuffer& out, const char* text) noexcept
{
    if (text == nullptr)
    {
        out.Append(kNullText);
        return;
    }
    const char* end = out.AppendUntil(text, '\0');
    if (end == text || static_cast<unsigned char>(end[-1]) < 0x80 || out.Cut())
    {
        return;
    }
    const auto length = static_cast<size_t>(end - text);
    const size_t whole = WholeCharacters(text, length);
    if (whole != length)
    {
        out.Truncate(out.View().size() - (length - whole));
        out.Append(kReplacementUtf8);
    }
}

void AppendWideText(TextBuffer& out, const Utf16Unit* text) noexcept
{
    if (text == nullptr)
    {
        out.Append(kNullText);
        return;
    }
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

void FormatText(TextBuffer& out, const Conversion& conversion, const void* value) noexcept
{
    const char* text = value != nullptr ? static_cast<const char*>(value) : kNullText.data();
    const size_t limit = conversion.hasPrecision ? conversion.precision : SIZE_MAX;
    const size_t length = conversion.hasPrecision ? strnlen(text, limit) : std::strlen(text);
    const bool ascii = length == 0 || static_cast<unsigned char>(text[length - 1]) < 0x80;
    const size_t whole = ascii ? length : WholeCharacters(text, length);
    // A character that we cut goes without trace; one that came to us in part shows.
    const bool cutBefore = whole != length && length < limit && limit - whole >= kReplacementUtf8.size();
    AppendPadded(out, conversion, {text, whole}, cutBefore ? kReplacementUtf8 : std::string_view{});
}

void FormatWideText(TextBuffer& out, const Conversion& conversion, const void* value) noexcept
{
    if (value == nullptr)
    {
        FormatText(out, conversion, nullptr);
        return;
    }
    const auto* text = static_cast<const Utf16Unit*>(value);
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

void FormatCharacter(TextBuffer& out, const Conversion& conversion, uint64_t value) noexcept
{
    if (conversion.type == 'C')
    {
        size_t units = 1;
        char bytes[kMaxUtf8Bytes];
        const size_t count = EncodeUtf8(DecodeUtf16(static_cast<uint16_t>(value), 0, units), bytes);
        AppendPadded(out, conversion, {bytes, count}, {});
        return;
    }
    const char character = static_cast<char>(value);
    AppendPadded(out, conversion, {&character, 1}, {});
}

} // namespace tsypr::format
