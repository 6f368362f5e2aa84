#ifndef TESSARY_SERVICE_TEXT_H
#define TESSARY_SERVICE_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace tsypr::service
{

// UTF-8 to UTF-16. Bytes that are not UTF-8 become U+FFFD.
std::u16string Utf16FromUtf8(std::string_view text);

// How many UTF-16 units a UTF-8 text takes, the unit in which Windows limits names.
std::size_t Utf16Length(std::string_view text);

// The longest beginning of a text that takes at most `units` units and does not end inside a surrogate pair.
std::u16string_view CutUtf16(std::u16string_view text, std::size_t units);

} // namespace tsypr::service

#endif
