#ifndef TESSARY_SERVICE_WIDE_TEXT_H
#define TESSARY_SERVICE_WIDE_TEXT_H

#include <algorithm>
#include <span>
#include <string>
#include <string_view>

#include <windows.h>

#include "service/text.h"

namespace tsypr::service
{

// Fills a fixed-size name field: the text cut to fit, a terminator, zeros to the end.
inline void FillField(std::span<WCHAR> field, std::string_view utf8)
{
    const std::u16string text = Utf16FromUtf8(utf8);
    const std::u16string_view cut = CutUtf16(text, field.size() - 1);
    std::ranges::fill(field, WCHAR{0});
    std::ranges::transform(cut, field.begin(), [](char16_t unit) { return static_cast<WCHAR>(unit); });
}

inline std::wstring WideFromUtf8(std::string_view utf8)
{
    const std::u16string text = Utf16FromUtf8(utf8);
    return {text.begin(), text.end()};
}

} // namespace tsypr::service

#endif
