#include "lib/unicode/codeset.h"

#include "lib/unicode/utf_piece.h"

namespace tsypr
{

bool CodeSet_IsUtf8(std::string_view text) noexcept
{
    const char* from = text.data();
    const char* const end = from + text.size();
    uint32_t codePoint = 0;
    while (from != end)
    {
        if (static_cast<signed char>(*from) >= 0)
        {
            ++from;
        }
        else if (!utf::TakeUtf8(from, end, codePoint))
        {
            return false;
        }
    }
    return true;
}

bool CodeSet_Utf8ToUtf16(std::string_view text, Utf16String& out) noexcept
{
    return CodeSet_Utf8ToUtf16(text, out, CodeSetMode::Strict).Ok();
}

bool CodeSet_Utf16ToUtf8(Utf16View text, std::string& out) noexcept
{
    return CodeSet_Utf16ToUtf8(text, out, CodeSetMode::Lenient).Ok();
}

CodeSetResult CodeSet_Utf8ToUtf16(std::string_view text, Utf16String& out, CodeSetMode mode) noexcept
{
    return utf::ConvertText(text, out, {mode});
}

CodeSetResult CodeSet_Utf8ToUtf32(std::string_view text, std::u32string& out, CodeSetMode mode) noexcept
{
    return utf::ConvertText(text, out, {mode});
}

CodeSetResult CodeSet_Utf16ToUtf8(Utf16View text, std::string& out, CodeSetMode mode) noexcept
{
    return utf::ConvertText(text, out, {mode});
}

CodeSetResult CodeSet_Utf16ToUtf32(Utf16View text, std::u32string& out, CodeSetMode mode) noexcept
{
    return utf::ConvertText(text, out, {mode});
}

CodeSetResult CodeSet_Utf32ToUtf8(std::u32string_view text, std::string& out, CodeSetMode mode) noexcept
{
    return utf::ConvertText(text, out, {mode});
}

CodeSetResult CodeSet_Utf32ToUtf16(std::u32string_view text, Utf16String& out, CodeSetMode mode) noexcept
{
    return utf::ConvertText(text, out, {mode});
}

} // namespace tsypr
