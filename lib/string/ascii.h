// Letters and blanks without a locale: names of levels, keys and switches are ASCII.
#ifndef TESSARY_LIB_STRING_ASCII_H
#define TESSARY_LIB_STRING_ASCII_H

#include <algorithm>
#include <string_view>

namespace tsypr
{

constexpr char AsciiLower(char c) noexcept
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Whether the texts are the same but for the case of the letters A to Z.
constexpr bool EqualsIgnoringCase(std::string_view first, std::string_view second) noexcept
{
    return std::equal(first.begin(),
                      first.end(),
                      second.begin(),
                      second.end(),
                      [](char a, char b) { return AsciiLower(a) == AsciiLower(b); });
}

// The text without the blanks and line ends around it.
constexpr std::string_view Trimmed(std::string_view text) noexcept
{
    constexpr std::string_view kBlanks = " \t\r\n";
    const size_t first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos ? std::string_view{}
                                           : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

} // namespace tsypr

#endif
