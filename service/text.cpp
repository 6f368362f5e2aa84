#include "service/text.h"

namespace tsypr::service
{

namespace
{

constexpr char32_t kReplacement = 0xFFFD;

// How many bytes follow a lead byte, or -1 for a byte that cannot lead.
int TrailCount(unsigned char lead)
{
    if (lead < 0x80)
    {
        return 0;
    }
    if (lead >= 0xC2 && lead < 0xE0)
    {
        return 1;
    }
    if (lead >= 0xE0 && lead < 0xF0)
    {
        return 2;
    }
    return lead >= 0xF0 && lead < 0xF5 ? 3 : -1;
}

bool IsScalar(char32_t value, int trails)
{
    constexpr char32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
    return value >= kSmallest[trails] && value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
}

// Takes one character off the front of `text`, which is not empty.
char32_t TakeCharacter(std::string_view& text)
{
    const auto lead = static_cast<unsigned char>(text.front());
    text.remove_prefix(1);
    const int trails = TrailCount(lead);
    if (trails <= 0)
    {
        return trails == 0 ? lead : kReplacement;
    }
    char32_t value = lead & (0x3Fu >> trails);
    for (int i = 0; i < trails; ++i)
    {
        const unsigned next = text.empty() ? 0u : static_cast<unsigned char>(text.front());
        if ((next & 0xC0u) != 0x80u)
        {
            return kReplacement;
        }
        value = (value << 6) | (next & 0x3Fu);
        text.remove_prefix(1);
    }
    return IsScalar(value, trails) ? value : kReplacement;
}

} // namespace

std::u16string Utf16FromUtf8(std::string_view text)
{
    std::u16string result;
    result.reserve(text.size());
    while (!text.empty())
    {
        const char32_t value = TakeCharacter(text);
        if (value < 0x10000)
        {
            result.push_back(static_cast<char16_t>(value));
            continue;
        }
        result.push_back(static_cast<char16_t>(0xD800 + ((value - 0x10000) >> 10)));
        result.push_back(static_cast<char16_t>(0xDC00 + ((value - 0x10000) & 0x3FF)));
    }
    return result;
}

std::size_t Utf16Length(std::string_view text)
{
    std::size_t length = 0;
    while (!text.empty())
    {
        length += TakeCharacter(text) < 0x10000 ? 1u : 2u;
    }
    return length;
}

std::u16string_view CutUtf16(std::u16string_view text, std::size_t units)
{
    if (text.size() <= units)
    {
        return text;
    }
    if (units > 0 && text[units - 1] >= 0xD800 && text[units - 1] <= 0xDBFF)
    {
        --units;
    }
    return text.substr(0, units);
}

} // namespace tsypr::service
