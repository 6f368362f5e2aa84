#include "lib/unicode/code_page.h"
#include "lib/unicode/process_code_page.h"

#include <langinfo.h>

namespace tsypr
{

unsigned CodeSet_ProcessPage() noexcept
{
    const char* name = nl_langinfo(CODESET);
    const unsigned page = name == nullptr ? 0 : CodeSet_PageByName(name);
    return page == 0 ? kCodePageUtf8 : page;
}

CodeSetResult CodeSet_ProcessToUtf16(std::string_view text, Utf16String& out, CodeSetMode mode) noexcept
{
    return CodeSet_PageToUtf16(CodeSet_ProcessPage(), text, out, mode);
}

CodeSetResult CodeSet_ProcessToUtf8(std::string_view text, std::string& out, CodeSetMode mode) noexcept
{
    return CodeSet_PageToUtf8(CodeSet_ProcessPage(), text, out, mode);
}

CodeSetResult CodeSet_Utf16ToProcess(Utf16View text, std::string& out, CodeSetMode mode) noexcept
{
    return CodeSet_Utf16ToPage(CodeSet_ProcessPage(), text, out, mode);
}

CodeSetResult CodeSet_Utf8ToProcess(std::string_view text, std::string& out, CodeSetMode mode) noexcept
{
    return CodeSet_Utf8ToPage(CodeSet_ProcessPage(), text, out, mode);
}

} // namespace tsypr
