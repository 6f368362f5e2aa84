// The texts that the pages' code puts into their lists.
#ifndef TESSARY_UI_PAGE_TEXTS_H
#define TESSARY_UI_PAGE_TEXTS_H

#include "module/interface_dll.h"
#include "printschema/keywords.h"
#include "remote/private_devmode.h"

#include <algorithm>
#include <cwchar>
#include <string>

namespace tsypr
{

// A text of the language library, cut to the buffer, or the fallback when the library is not loaded or lacks it.
template <size_t Chars>
FixedText<Chars> LoadPageText(UINT id, const wchar_t* fallback) noexcept
{
    FixedText<Chars> text = {};
    // Without a module LoadStringW would read the host program's texts.
    if (ResourceModule == nullptr || LoadStringW(ResourceModule, id, text.text, static_cast<int>(Chars)) < 1)
    {
        const size_t length = std::min(std::wcslen(fallback), Chars - 1);
        std::wmemcpy(text.text, fallback, length);
        text.text[length] = L'\0';
    }
    return text;
}

// The text of a list that has the same choices for every printer.
struct PageText
{
    UINT id;
    const wchar_t* fallback;
};

inline FixedText<32> LoadPageText(const PageText& text) noexcept
{
    return LoadPageText<32>(text.id, text.fallback);
}

// What the lists call a print schema keyword. The library has the texts of a table in the table's order, from `firstId`
// on. A keyword that the table lacks is its own text.
inline std::wstring KeywordText(KeywordTable table, UINT firstId, const std::wstring& keyword)
{
    for (size_t i = 0; i < table.size(); ++i)
    {
        if (keyword == table[i].keyword)
        {
            return LoadPageText<64>(firstId + static_cast<UINT>(i), table[i].displayName).text;
        }
    }
    return keyword;
}

} // namespace tsypr

#endif
