#include "module/interface_dll.h"

#include "module/log.h"
#include "module/malloc_ptr.h"
#include "module/reg_utils.h"
#include "module/registry_keys.h"

#include <string>

namespace tsypr
{
namespace
{

constexpr wchar_t kEnglish[] = L"tsyprUI_en_us_409.dll";

const wchar_t* ChineseFileName(WORD subLanguage) noexcept
{
    switch (subLanguage)
    {
    case SUBLANG_CHINESE_TRADITIONAL:
        return L"tsyprUI_zh_tw_404.dll";
    case SUBLANG_CHINESE_SIMPLIFIED:
    case SUBLANG_CHINESE_SINGAPORE:
        return L"tsyprUI_zh_cn_804.dll";
    default:
        return kEnglish; // Hong Kong and Macau get neither Chinese library, on purpose
    }
}

bool LoadLanguageLibrary(const std::wstring& path) noexcept
{
    LogAt(kLogInfo, "%s, get the tsyprui language files path: %S\n", "LoadLanguageFile", path.c_str());
    LanguageModule = LoadLibraryW(path.c_str());
    if (LanguageModule == nullptr)
    {
        LogError("%s, loading language %S resource library failed with error %d.\n",
                 "LoadLanguageFile",
                 path.c_str(),
                 static_cast<int>(GetLastError()));
        return false;
    }
    LogAt(kLogInfo, "%s, language %S resource library loaded.\n", "LoadLanguageFile", path.c_str());
    return true;
}

} // namespace

const wchar_t* LanguageFileName(LANGID langId) noexcept
{
    switch (PRIMARYLANGID(langId))
    {
    case LANG_CHINESE:
        return ChineseFileName(SUBLANGID(langId));
    case LANG_GERMAN:
        return L"tsyprUI_de_de_407.dll";
    case LANG_SPANISH:
        return L"tsyprUI_es_es_40a.dll";
    case LANG_FRENCH:
        return L"tsyprUI_fr_fr_40c.dll";
    case LANG_JAPANESE:
        return L"tsyprUI_ja_jp_411.dll";
    case LANG_KOREAN:
        return L"tsyprUI_ko_kr_412.dll";
    default:
        return kEnglish;
    }
}

bool LoadLanguageFile(LANGID langId) noexcept
{
    wchar_t* directory = nullptr;
    if (!RegUtils::ReadStringValueW(HKEY_LOCAL_MACHINE, kLanguageKey, L"tsyprui_source", &directory, nullptr))
    {
        LogError("%s, failed to get the tsyprui language files path: %d.\n",
                 "LoadLanguageFile",
                 static_cast<int>(GetLastError()));
        return false;
    }
    const MallocPtr<wchar_t> owner(directory);
    try
    {
        // The value ends with its backslash; none is added here.
        return LoadLanguageLibrary(std::wstring(directory) + LanguageFileName(langId));
    }
    catch (...)
    {
        return false;
    }
}

} // namespace tsypr
