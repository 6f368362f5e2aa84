#include "lib/user/app_data.h"

#include "lib/unicode/codeset.h"

#include <windows.h>

namespace tsypr
{
namespace
{

constexpr wchar_t kProductKey[] = L"Software\\Zelmora\\Tessary";
constexpr wchar_t kAppDataValue[] = L"AppDataPath";
constexpr wchar_t kProductFolder[] = L"\\Zelmora\\Tessary";

// Registry texts of any length, without their terminator.
bool ReadAppDataPath(std::wstring& path)
{
    LSTATUS status = ERROR_MORE_DATA;
    DWORD bytes = MAX_PATH * sizeof(wchar_t); // for nearly every path, so that one question does
    while (status == ERROR_MORE_DATA)
    {
        path.resize(bytes / sizeof(wchar_t) + 1);
        bytes = static_cast<DWORD>(path.size() * sizeof(wchar_t));
        status =
            RegGetValueW(HKEY_LOCAL_MACHINE, kProductKey, kAppDataValue, RRF_RT_REG_SZ, nullptr, path.data(), &bytes);
    }
    if (status != ERROR_SUCCESS)
    {
        return false;
    }
    path.resize(wcsnlen(path.data(), path.size()));
    while (!path.empty() && path.back() == L'\\')
    {
        path.pop_back();
    }
    return !path.empty();
}

bool ReadEnvironment(const wchar_t* name, std::wstring& value)
{
    value.resize(GetEnvironmentVariableW(name, nullptr, 0));
    const DWORD length = GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size()));
    if (length == 0 || length >= value.size())
    {
        return false;
    }
    value.resize(length);
    return true;
}

// The environment tells the folder without loading the shell, which must not happen while a library is attached.
bool ProductFolderBelow(const wchar_t* variable, std::wstring& path)
{
    if (!ReadEnvironment(variable, path))
    {
        return false;
    }
    path += kProductFolder;
    return true;
}

bool IsDirectory(const std::wstring& path) noexcept
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

} // namespace

bool W32Util_GetTessaryCommonAppDataFilePath(const char* relative, std::string& path) noexcept
{
    path.clear();
    try
    {
        std::wstring directory;
        if ((!ReadAppDataPath(directory) && !ProductFolderBelow(L"ProgramData", directory)) ||
            !IsDirectory(directory) || !CodeSet_Utf16ToUtf8(directory, path))
        {
            return false;
        }
        if (relative != nullptr && *relative != '\0')
        {
            path.append("\\").append(relative);
        }
        return true;
    }
    catch (...)
    {
        path.clear();
        return false;
    }
}

bool GetUserAppDataDirectory(std::string& path) noexcept
{
    path.clear();
    try
    {
        std::wstring directory;
        return ProductFolderBelow(L"APPDATA", directory) && CodeSet_Utf16ToUtf8(directory, path);
    }
    catch (...)
    {
        return false;
    }
}

} // namespace tsypr
