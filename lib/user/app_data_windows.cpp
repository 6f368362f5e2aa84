#include "lib/user/app_data.h"

#include "lib/file/operations.h"
#include "lib/unicode/codeset.h"
#include "lib/user/registry_text_windows.h"

#include <windows.h>

namespace tsypr
{
namespace
{

constexpr wchar_t kProductKey[] = L"Software\\Zelmora\\Tessary";
constexpr wchar_t kAppDataValue[] = L"AppDataPath";
constexpr wchar_t kProfileListKey[] = L"Software\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList";
constexpr wchar_t kProductFolder[] = L"\\Zelmora\\Tessary";

// Without separators at the end, except of a root: "D:" alone would be the current directory there.
void DropLastSeparators(std::wstring& path)
{
    while (path.size() > 1 && path.back() == L'\\' && !path.ends_with(L":\\"))
    {
        path.pop_back();
    }
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

void AppendProductFolder(std::wstring& path)
{
    while (path.ends_with(L'\\'))
    {
        path.pop_back();
    }
    path += kProductFolder;
}

// The environment tells the folder without loading the shell, which must not happen while a library is attached. Where
// a host starts us without an environment, the registry knows it.
bool ReadCommonFolder(std::wstring& path)
{
    if (!ReadEnvironment(L"ProgramData", path) && !ReadMachineText(kProfileListKey, L"ProgramData", path))
    {
        return false;
    }
    AppendProductFolder(path);
    return true;
}

bool IsDirectory(const std::wstring& path, const std::string& utf8) noexcept
{
    if (path.size() >= MAX_PATH)
    {
        FileStatus status;
        return GetFileStatus(utf8.c_str(), status).Ok() && status.kind == FileKind::Directory;
    }
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
        if (!ReadMachineText(kProductKey, kAppDataValue, directory) && !ReadCommonFolder(directory))
        {
            return false;
        }
        DropLastSeparators(directory);
        if (!CodeSet_Utf16ToUtf8(directory, path) || !IsDirectory(directory, path))
        {
            path.clear();
            return false;
        }
        if (relative != nullptr && *relative != '\0')
        {
            path.append(path.ends_with('\\') ? "" : "\\").append(relative);
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
        if (!ReadEnvironment(L"APPDATA", directory))
        {
            return false;
        }
        AppendProductFolder(directory);
        return CodeSet_Utf16ToUtf8(directory, path);
    }
    catch (...)
    {
        return false;
    }
}

} // namespace tsypr
