#include "tools/ppdimport/text.h"

#include <cstdint>
#include <optional>

namespace tsypr::ppdimport
{
namespace
{

bool IsUpper(char c)
{
    return c >= 'A' && c <= 'Z';
}

bool IsLower(char c)
{
    return c >= 'a' && c <= 'z';
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

char ToLower(char c)
{
    return IsUpper(c) ? static_cast<char>(c - 'A' + 'a') : c;
}

struct Character
{
    std::uint32_t code = 0;
    std::size_t bytes = 0;
};

std::optional<Character> LeadByte(unsigned char lead)
{
    if (lead < 0x80)
    {
        return Character{lead, 1};
    }
    if (lead >= 0xC2 && lead <= 0xDF)
    {
        return Character{lead & 0x1Fu, 2};
    }
    if (lead >= 0xE0 && lead <= 0xEF)
    {
        return Character{lead & 0x0Fu, 3};
    }
    if (lead >= 0xF0 && lead <= 0xF4)
    {
        return Character{lead & 0x07u, 4};
    }
    return std::nullopt;
}

// The character that begins at `text`, or nothing when the bytes are not UTF-8.
std::optional<Character> Decode(std::string_view text)
{
    std::optional<Character> character = LeadByte(static_cast<unsigned char>(text.front()));
    if (!character || text.size() < character->bytes)
    {
        return std::nullopt;
    }
    for (std::size_t i = 1; i < character->bytes; ++i)
    {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xC0) != 0x80)
        {
            return std::nullopt;
        }
        character->code = (character->code << 6) | (next & 0x3Fu);
    }
    constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = character->code >= 0xD800 && character->code <= 0xDFFF;
    if (character->code < kSmallest[character->bytes] || character->code > 0x10FFFF || surrogate)
    {
        return std::nullopt;
    }
    return character;
}

bool IsUtf8(std::string_view text)
{
    while (!text.empty())
    {
        const std::optional<Character> character = Decode(text);
        if (!character)
        {
            return false;
        }
        text.remove_prefix(character->bytes);
    }
    return true;
}

std::string FromLatin1(std::string_view text)
{
    std::string result;
    for (const char c : text)
    {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80)
        {
            result += c;
        }
        else
        {
            result += static_cast<char>(0xC0 | (byte >> 6));
            result += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return result;
}

std::size_t Utf16Units(const Character& character)
{
    return character.code >= 0x10000 ? 2 : 1;
}

// The leading part of a valid UTF-8 text that fits into `limit` UTF-16 units, and how many it takes.
std::pair<std::size_t, std::size_t> Measure(std::string_view text, std::size_t limit)
{
    std::size_t bytes = 0;
    std::size_t units = 0;
    while (bytes < text.size())
    {
        const std::optional<Character> character = Decode(text.substr(bytes));
        if (!character || units + Utf16Units(*character) > limit)
        {
            break;
        }
        bytes += character->bytes;
        units += Utf16Units(*character);
    }
    return {bytes, units};
}

bool StartsWord(std::string_view text, std::size_t i)
{
    const char previous = text[i - 1];
    const char current = text[i];
    return IsDigit(previous) != IsDigit(current) || (IsLower(previous) && IsUpper(current));
}

} // namespace

std::string CleanText(std::string_view text)
{
    const std::string utf8 = IsUtf8(text) ? std::string(text) : FromLatin1(text);
    std::string result;
    bool blank = false;
    for (std::size_t i = 0; i < utf8.size();)
    {
        const Character character = *Decode(std::string_view(utf8).substr(i));
        const bool control = character.code < 0x20 || (character.code >= 0x7F && character.code < 0xA0);
        if (control || character.code == ' ')
        {
            blank = true;
        }
        else
        {
            if (blank && !result.empty())
            {
                result += ' ';
            }
            blank = false;
            result.append(utf8, i, character.bytes);
        }
        i += character.bytes;
    }
    return result;
}

std::string CutText(std::string_view text, std::size_t limit)
{
    std::string result(text.substr(0, Measure(text, limit).first));
    while (!result.empty() && result.back() == ' ')
    {
        result.pop_back();
    }
    return result;
}

std::size_t TextLength(std::string_view text)
{
    return Measure(text, static_cast<std::size_t>(-1)).second;
}

std::string Normalise(std::string_view text)
{
    std::string result;
    int depth = 0;
    for (const char c : text)
    {
        depth += c == '(' ? 1 : 0;
        if (depth == 0 && (IsUpper(c) || IsLower(c) || IsDigit(c)))
        {
            result += ToLower(c);
        }
        depth -= c == ')' && depth > 0 ? 1 : 0;
    }
    return result;
}

bool HasWord(std::string_view list, std::string_view word)
{
    while (!word.empty() && !list.empty())
    {
        const std::size_t end = list.find(' ');
        if (list.substr(0, end) == word)
        {
            return true;
        }
        list.remove_prefix(end == std::string_view::npos ? list.size() : end + 1);
    }
    return false;
}

std::set<std::string> Words(std::string_view text)
{
    std::set<std::string> words;
    std::string word;
    const auto flush = [&]
    {
        if (!word.empty())
        {
            words.insert(word);
            word.clear();
        }
    };
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const char c = text[i];
        if (!IsUpper(c) && !IsLower(c) && !IsDigit(c))
        {
            flush();
            continue;
        }
        if (i > 0 && StartsWord(text, i))
        {
            flush();
        }
        word += ToLower(c);
    }
    flush();
    return words;
}

std::string VendorKeyword(std::string_view kind, std::string_view name)
{
    std::string local;
    bool startOfWord = true;
    for (const char c : name)
    {
        if (!IsUpper(c) && !IsLower(c) && !IsDigit(c))
        {
            startOfWord = true;
            continue;
        }
        local += startOfWord && IsLower(c) ? static_cast<char>(c - 'a' + 'A') : c;
        startOfWord = false;
    }
    if (local.empty() || IsDigit(local.front()))
    {
        local.insert(0, kind);
    }
    return "ns0000:" + local;
}

} // namespace tsypr::ppdimport
