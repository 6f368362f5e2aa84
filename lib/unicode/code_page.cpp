#include "lib/unicode/code_page.h"

#include "lib/string/ascii.h"
#include "lib/unicode/code_page_stream.h"
#include "lib/unicode/through_utf16.h"

namespace tsypr
{
namespace
{

struct Alias
{
    std::string_view name; // small letters and digits alone
    unsigned page;
};

constexpr Alias kAliases[] = {
    {"windows1252", 1252},
    {"cp1252", 1252},
    {"xcp1252", 1252},
    {"ms1252", 1252},
    {"1252", 1252},
    {"shiftjis", 932},
    {"sjis", 932},
    {"xsjis", 932},
    {"mskanji", 932},
    {"csshiftjis", 932},
    {"windows31j", 932},
    {"cswindows31j", 932},
    {"windows932", 932},
    {"cp932", 932},
    {"ms932", 932},
    {"932", 932},
    {"gbk", 936},
    {"xgbk", 936},
    {"gb2312", 936},
    {"gb231280", 936},
    {"csgb2312", 936},
    {"chinese", 936},
    {"windows936", 936},
    {"cp936", 936},
    {"ms936", 936},
    {"936", 936},
    {"gb18030", 54936},
    {"windows54936", 54936},
    {"cp54936", 54936},
    {"54936", 54936},
    {"euckr", 949},
    {"cseuckr", 949},
    {"ksc56011987", 949},
    {"ksc56011989", 949},
    {"csksc56011987", 949},
    {"ksc5601", 949},
    {"korean", 949},
    {"uhc", 949},
    {"windows949", 949},
    {"cp949", 949},
    {"ms949", 949},
    {"949", 949},
    {"big5", 950},
    {"cnbig5", 950},
    {"csbig5", 950},
    {"xxbig5", 950},
    {"windows950", 950},
    {"cp950", 950},
    {"ms950", 950},
    {"950", 950},
    {"utf8", kCodePageUtf8},
    {"unicode11utf8", kCodePageUtf8},
    {"cp65001", kCodePageUtf8},
    {"65001", kCodePageUtf8},
};

constexpr bool IsSeparator(char c) noexcept
{
    return c == '-' || c == '_' || c == ':' || c == ' ';
}

bool IsAlias(std::string_view name, std::string_view alias) noexcept
{
    size_t matched = 0;
    for (const char c : name)
    {
        if (IsSeparator(c))
        {
            continue;
        }
        if (matched == alias.size() || AsciiLower(c) != alias[matched])
        {
            return false;
        }
        ++matched;
    }
    return matched == alias.size();
}

template <class From, class To>
CodeSetResult Convert(unsigned page, std::basic_string_view<From> text, std::basic_string<To>& out, CodeSetMode mode)
{
    out.clear();
    return utf::Finished(CodePageStream<From, To>(page, mode).AppendLast(text, out), out);
}

} // namespace

unsigned CodeSet_PageByName(std::string_view name) noexcept
{
    for (const Alias& alias : kAliases)
    {
        if (IsAlias(name, alias.name))
        {
            return alias.page;
        }
    }
    return 0;
}

const char* CodeSet_PageName(unsigned page) noexcept
{
    for (const CodePageTable& table : kCodePages)
    {
        if (table.number == page)
        {
            return table.name;
        }
    }
    return page == kCodePageUtf8 ? "utf-8" : nullptr;
}

CodeSetResult CodeSet_PageToUtf16(unsigned page, std::string_view text, Utf16String& out, CodeSetMode mode) noexcept
{
    return Convert(page, text, out, mode);
}

CodeSetResult CodeSet_Utf16ToPage(unsigned page, Utf16View text, std::string& out, CodeSetMode mode) noexcept
{
    return Convert(page, text, out, mode);
}

CodeSetResult CodeSet_PageToUtf8(unsigned page, std::string_view text, std::string& out, CodeSetMode mode) noexcept
{
    return utf::ToUtf8(out, [&](Utf16String& wide) { return CodeSet_PageToUtf16(page, text, wide, mode); });
}

CodeSetResult CodeSet_Utf8ToPage(unsigned page, std::string_view text, std::string& out, CodeSetMode mode) noexcept
{
    return utf::FromUtf8(text, out, [&](Utf16View wide) { return CodeSet_Utf16ToPage(page, wide, out, mode); });
}

} // namespace tsypr
