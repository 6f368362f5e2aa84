// UTF-8 from and into what converts to UTF-16 alone. Internal to lib/unicode.
#ifndef TESSARY_LIB_UNICODE_THROUGH_UTF16_H
#define TESSARY_LIB_UNICODE_THROUGH_UTF16_H

#include "lib/unicode/codeset.h"
#include "lib/unicode/utf_piece.h"

namespace tsypr::utf
{

// The offset of the character that begins with unit `units` of what the UTF-8 text became.
inline size_t Utf8Offset(std::string_view text, size_t units) noexcept
{
    const char* from = text.data();
    const char* const end = from + text.size();
    for (size_t unit = 0; unit < units; ++unit)
    {
        const char* const start = from;
        uint32_t codePoint = 0;
        if (static_cast<signed char>(*from) >= 0)
        {
            ++from;
        }
        else if (TakeUtf8(from, end, codePoint))
        {
            unit += codePoint >= 0x10000 ? 1 : 0;
        }
        else
        {
            from = start + MeasureBadUtf8(start, end).length;
        }
    }
    return static_cast<size_t>(from - text.data());
}

// Calls `decode`, which is to give UTF-16, and makes UTF-8 of that.
template <class Decode>
CodeSetResult ToUtf8(std::string& out, Decode&& decode) noexcept
{
    Utf16String wide;
    CodeSetResult result = decode(wide);
    if (!CodeSet_Utf16ToUtf8(wide, out))
    {
        result = {CodeSetStatus::OutOfMemory, 0, result.firstBadOffset};
    }
    return result;
}

// Makes UTF-16 of the text and calls `encode` with it, which is to fill `out`.
template <class Encode>
CodeSetResult FromUtf8(std::string_view text, std::string& out, Encode&& encode) noexcept
{
    // What is not well-formed becomes something that no code page has, so that it is noticed and counted by the
    // encoder, in the order of the text.
    constexpr uint32_t kNowhere = 0xDFFF;
    Utf16String wide;
    CodeSetResult result = ConvertText(text, wide, {CodeSetMode::Lenient, kNowhere});
    if (!result.Ok())
    {
        out.clear();
        return result;
    }
    result = encode(wide);
    if (result.firstBadOffset != kNoOffset)
    {
        result.firstBadOffset = Utf8Offset(text, result.firstBadOffset);
    }
    if (result.status == CodeSetStatus::IllFormed)
    {
        const char* const bad = text.data() + result.firstBadOffset;
        const bool cut = MeasureBadUtf8(bad, text.data() + text.size()).stop == Stop::Cut;
        result.status = cut ? CodeSetStatus::Incomplete : CodeSetStatus::IllFormed;
    }
    return result;
}

} // namespace tsypr::utf

#endif
