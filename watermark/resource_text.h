// Texts of the language library that have a fallback.
#ifndef TESSARY_WATERMARK_RESOURCE_TEXT_H
#define TESSARY_WATERMARK_RESOURCE_TEXT_H

#include "remote/private_devmode.h"

#include <windows.h>

namespace tsypr
{

// A string resource, cut to what the result holds; the fallback when the module is null or lacks the string.
template <size_t Chars>
FixedText<Chars> ResourceText(HMODULE resources, UINT id, const wchar_t* fallback) noexcept
{
    FixedText<Chars> result = {};
    if (resources == nullptr || LoadStringW(resources, id, result.text, static_cast<int>(Chars)) <= 0)
    {
        std::wcsncpy(result.text, fallback, Chars - 1);
    }
    return result;
}

} // namespace tsypr

#endif
