#include "lib/unicode/codeset.h"

namespace tsypr
{
namespace
{

struct Lead
{
    size_t more;       // continuation bytes that follow
    uint32_t bits;     // of the code point, from the lead byte
    uint32_t smallest; // code point that needs this length
};

bool ReadLead(unsigned char byte, Lead& lead) noexcept
{
    if (byte < 0x80)
    {
        lead = {0, byte, 0};
    }
    else if (byte >= 0xC2 && byte <= 0xDF)
    {
        lead = {1, byte & 0x1FU, 0x80};
    }
    else if (byte >= 0xE0 && byte <= 0xEF)
    {
        lead = {2, byte & 0x0FU, 0x800};
    }
    else if (byte >= 0xF0 && byte <= 0xF4)
    {
        lead = {3, byte & 0x07U, 0x10000};
    }
    else
    {
        return false;
    }
    return true;
}

// Takes one code point from `text` at `i` and moves `i` behind it; false when the bytes are not well-formed.
bool TakeUtf8(std::string_view text, size_t& i, uint32_t& codePoint) noexcept
{
    Lead lead{};
    if (!ReadLead(static_cast<unsigned char>(text[i]), lead) || text.size() - i <= lead.more)
    {
        return false;
    }
    codePoint = lead.bits;
    for (size_t k = 1; k <= lead.more; ++k)
    {
        const auto byte = static_cast<unsigned char>(text[i + k]);
        if ((byte & 0xC0) != 0x80)
        {
            return false;
        }
        codePoint = (codePoint << 6) | (byte & 0x3FU);
    }
    i += lead.more + 1;
    return codePoint >= lead.smallest && codePoint <= 0x10FFFF && !IsHighSurrogate(codePoint) &&
           !IsLowSurrogate(codePoint);
}

void AppendUtf16(Utf16String& out, uint32_t codePoint)
{
    if (codePoint < 0x10000)
    {
        out.push_back(static_cast<Utf16Unit>(codePoint));
        return;
    }
    out.push_back(static_cast<Utf16Unit>(0xD800 + ((codePoint - 0x10000) >> 10)));
    out.push_back(static_cast<Utf16Unit>(0xDC00 + ((codePoint - 0x10000) & 0x3FF)));
}

} // namespace

bool CodeSet_Utf8ToUtf16(std::string_view text, Utf16String& out) noexcept
{
    out.clear();
    try
    {
        out.reserve(text.size());
        for (size_t i = 0; i < text.size();)
        {
            uint32_t codePoint = 0;
            if (!TakeUtf8(text, i, codePoint))
            {
                out.clear();
                return false;
            }
            AppendUtf16(out, codePoint);
        }
        return true;
    }
    catch (...)
    {
        out.clear();
        return false;
    }
}

bool CodeSet_Utf16ToUtf8(std::basic_string_view<Utf16Unit> text, std::string& out) noexcept
{
    out.clear();
    try
    {
        out.reserve(text.size());
        for (size_t i = 0; i < text.size();)
        {
            size_t units = 1;
            char bytes[kMaxUtf8Bytes];
            const uint32_t next = i + 1 < text.size() ? text[i + 1] : 0;
            out.append(bytes, EncodeUtf8(DecodeUtf16(text[i], next, units), bytes));
            i += units;
        }
        return true;
    }
    catch (...)
    {
        out.clear();
        return false;
    }
}

} // namespace tsypr
