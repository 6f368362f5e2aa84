// Print schema documents in files, for diagnosis.
#include "lib/misc/once.h"
#include "lib/unicode/codeset.h"
#include "lib/user/app_data.h"
#include "module/log.h"
#include "module/reg_utils.h"
#include "module/registry_keys.h"
#include "printschema/automation.h"
#include "printschema/pt_parser.h"

#include <string_view>

namespace tsypr
{
namespace
{

constexpr char kFunction[] = "PTParser::DumpXMLDataIfEnabledInReg";

// Read once per process; a later change shows when the module is loaded anew.
bool DumpEnabled() noexcept
{
    static constinit OnceFlag s_once;
    static constinit DWORD s_value = 0;
    CallOnce(s_once,
             []
             {
                 RegUtils::ReadDwordValue(HKEY_LOCAL_MACHINE, kDriverKey, "DumpPTData", 0, &s_value);
                 return true;
             });
    return s_value != 0;
}

} // namespace

void PTParser::DumpXMLDataIfEnabledInReg(IXMLDOMDocument2* xmlDoc, std::wstring& fileName)
{
    if (!DumpEnabled())
    {
        return;
    }
    if (xmlDoc == nullptr)
    {
        LogError("%s, xmlDoc is null\n", kFunction);
        return;
    }
    static constexpr std::wstring_view kWhiteSpace = L" \t\n\v\f\r";
    std::erase_if(fileName, [](wchar_t character) { return kWhiteSpace.find(character) != std::wstring_view::npos; });
    std::string folder;
    if (!W32Util_GetTessaryCommonAppDataFilePath("logs\\", folder))
    {
        LogError("%s, failed call W32Util_GetTessaryCommonAppDataFilePath.\n", kFunction);
        return;
    }
    Utf16String path;
    if (!CodeSet_Utf8ToUtf16(folder, path))
    {
        LogError("%s, failed call CodeSet_Utf8ToUtf16.\n", kFunction);
        return;
    }
    path += fileName;
    const Bstr target(path);
    if (FAILED(xmlDoc->save(target.Borrow())))
    {
        LogError("%s, failed to save PT data to \"%S\".\n", kFunction, path.c_str());
    }
}

} // namespace tsypr
