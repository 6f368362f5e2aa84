#include "lib/string/key_value_text.h"

#include "lib/string/ascii.h"
#include "lib/unicode/codeset.h"

#include <algorithm>

namespace tsypr
{
namespace
{

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool IsControl(char c) noexcept
{
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

int HexDigit(char c) noexcept
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const char upper = c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c;
    const size_t digit = kDigits.find(upper);
    return digit == std::string_view::npos ? -1 : static_cast<int>(digit);
}

// The byte that "\<0A>" at the start of `text` stands for; -1 when that is not there.
int NumberedByte(std::string_view text) noexcept
{
    constexpr size_t kLength = 5;
    if (text.size() < kLength || text[1] != '<' || text[4] != '>' || HexDigit(text[2]) < 0 || HexDigit(text[3]) < 0)
    {
        return -1;
    }
    return HexDigit(text[2]) * 16 + HexDigit(text[3]);
}

// Takes what stands for one byte of the value from the start of `text`.
char TakeByte(std::string_view& text) noexcept
{
    size_t length = 1;
    char byte = text[0];
    if (byte == '\\' && text.size() > 1)
    {
        const int numbered = NumberedByte(text);
        if (text[1] == '"' || text[1] == '\\')
        {
            byte = text[1];
            length = 2;
        }
        else if (numbered >= 0)
        {
            byte = static_cast<char>(numbered);
            length = 5;
        }
    }
    text.remove_prefix(length);
    return byte;
}

// Takes the quoted value apart; false when it does not end with a quote of its own.
bool Unquote(std::string_view quoted, std::string& value)
{
    if (quoted.size() < 2 || quoted.front() != '"')
    {
        return false;
    }
    quoted.remove_prefix(1);
    while (!quoted.empty() && quoted.front() != '"')
    {
        value.push_back(TakeByte(quoted));
    }
    return quoted.size() == 1;
}

// Whether a byte of a value is written by its number.
bool IsNumbered(char c, bool utf8) noexcept
{
    return IsControl(c) || (!utf8 && static_cast<unsigned char>(c) >= 0x80);
}

// A backslash needs another one where what follows would give it a meaning. Those next to others are doubled, too:
// that is what readers expect.
bool NeedsDoubling(std::string_view value, size_t i, bool utf8) noexcept
{
    if (i > 0 && value[i - 1] == '\\')
    {
        return true;
    }
    const char next = i + 1 < value.size() ? value[i + 1] : '"';
    return next == '"' || next == '\\' || next == '<' || IsNumbered(next, utf8);
}

void AppendNumbered(std::string& out, char c)
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    out.append("\\<").append(1, kDigits[byte / 16]).append(1, kDigits[byte % 16]).append(1, '>');
}

std::string_view LineEnd(std::string_view line) noexcept
{
    return line.ends_with("\r\n") ? "\r\n" : (line.ends_with("\n") ? "\n" : "");
}

std::string WithLine(std::string_view text, std::string_view key, std::string_view value)
{
    const std::string_view firstEnd = LineEnd(text.substr(0, std::min(text.find('\n'), text.size() - 1) + 1));
    const std::string_view end = firstEnd.empty() ? "\n" : firstEnd;
    std::string out(text);
    if (!text.empty() && text != kByteOrderMark && !text.ends_with('\n'))
    {
        out.append(end);
    }
    out.append(key).append(" = ");
    AppendQuotedValue(out, value);
    return out.append(end);
}

std::string WithValue(std::string_view text, std::string_view key, std::string_view value)
{
    std::string_view quoted;
    bool same = false;
    for (KeyValueReader reader(text); reader.Next();)
    {
        if (reader.Kind() == LineKind::Setting && reader.Key() == key)
        {
            quoted = reader.QuotedValue();
            same = reader.Value() == value;
        }
    }
    if (quoted.empty())
    {
        return WithLine(text, key, value);
    }
    if (same)
    {
        return std::string(text);
    }
    const auto begin = static_cast<size_t>(quoted.data() - text.data());
    std::string out(text.substr(0, begin));
    AppendQuotedValue(out, value);
    return out.append(text.substr(begin + quoted.size()));
}

std::string WithoutKey(std::string_view text, std::string_view key)
{
    std::string out;
    for (KeyValueReader reader(text); reader.Next();)
    {
        if (reader.Kind() != LineKind::Setting || reader.Key() != key)
        {
            out.append(reader.Line());
        }
        else if (reader.LineNumber() == 1 && text.starts_with(kByteOrderMark))
        {
            out.append(kByteOrderMark);
        }
    }
    // What is no byte-order mark in the middle must not become one.
    const bool hidesMark = out.starts_with(kByteOrderMark) && !text.starts_with(kByteOrderMark);
    return hidesMark ? std::string("\n").append(out) : out;
}

} // namespace

bool KeyValueReader::Next()
{
    if (m_rest.empty())
    {
        return false;
    }
    const size_t length = std::min(m_rest.find('\n'), m_rest.size() - 1) + 1;
    m_line = m_rest.substr(0, length);
    m_rest.remove_prefix(length);
    ++m_number;
    std::string_view line = m_line;
    if (m_number == 1 && line.starts_with(kByteOrderMark))
    {
        line.remove_prefix(kByteOrderMark.size());
    }
    if (line.ends_with('\n'))
    {
        line.remove_suffix(1);
    }
    m_kind = ParseLine(Trimmed(line));
    return true;
}

LineKind KeyValueReader::ParseLine(std::string_view line)
{
    m_key = {};
    m_quoted = {};
    m_value.clear();
    if (line.empty() || line.front() == '#')
    {
        return LineKind::Comment;
    }
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos)
    {
        return LineKind::Damaged;
    }
    m_key = Trimmed(line.substr(0, equals));
    m_quoted = Trimmed(line.substr(equals + 1));
    const bool whole = IsWritableKey(m_key) && Unquote(m_quoted, m_value);
    return whole && line.find('\0') == std::string_view::npos && CodeSet_IsUtf8(line) ? LineKind::Setting
                                                                                      : LineKind::Damaged;
}

bool IsWritableKey(std::string_view key) noexcept
{
    return !key.empty() && Trimmed(key).size() == key.size() && key.front() != '#' &&
           !key.starts_with(kByteOrderMark) && key.find('=') == std::string_view::npos &&
           std::none_of(key.begin(), key.end(), IsControl) && CodeSet_IsUtf8(key);
}

void AppendQuotedValue(std::string& out, std::string_view value)
{
    const bool utf8 = CodeSet_IsUtf8(value);
    out.push_back('"');
    for (size_t i = 0; i < value.size(); ++i)
    {
        const char c = value[i];
        if (IsNumbered(c, utf8))
        {
            AppendNumbered(out, c);
            continue;
        }
        if (c == '"' || (c == '\\' && NeedsDoubling(value, i, utf8)))
        {
            out.push_back('\\');
        }
        out.push_back(c);
    }
    out.push_back('"');
}

bool RewriteKeyValueText(std::string& text, std::string_view key, const std::string_view* value) noexcept
{
    if (!IsWritableKey(key))
    {
        return false;
    }
    try
    {
        text = value != nullptr ? WithValue(text, key, *value) : WithoutKey(text, key);
        return true;
    }
    catch (...)
    {
        return false;
    }
}

} // namespace tsypr
