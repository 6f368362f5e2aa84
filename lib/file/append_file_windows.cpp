#include "lib/file/append_file.h"

#include "lib/unicode/codeset.h"

#include <windows.h>

#include <climits>
#include <cstdint>

namespace tsypr
{
namespace
{

HANDLE ToHandle(long long value) noexcept
{
    return reinterpret_cast<HANDLE>(static_cast<intptr_t>(value));
}

HANDLE OpenForAppend(const wchar_t* path) noexcept
{
    // Without FILE_WRITE_DATA every write goes to the end of the file, also when other processes append to it.
    return CreateFileW(path,
                       FILE_APPEND_DATA | SYNCHRONIZE,
                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                       nullptr,
                       OPEN_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL,
                       nullptr);
}

bool CreateParent(std::wstring path) noexcept
{
    const size_t separator = path.find_last_of(L"\\/");
    if (separator == std::wstring::npos || separator == 0)
    {
        return false;
    }
    path[separator] = L'\0';
    return CreateDirectoryW(path.c_str(), nullptr) != FALSE;
}

} // namespace

bool AppendFile::Open(const char* path) noexcept
{
    Close();
    try
    {
        std::wstring widePath;
        if (path == nullptr || !CodeSet_Utf8ToUtf16(path, widePath))
        {
            return false;
        }
        HANDLE handle = OpenForAppend(widePath.c_str());
        if (handle == INVALID_HANDLE_VALUE && GetLastError() == ERROR_PATH_NOT_FOUND && CreateParent(widePath))
        {
            handle = OpenForAppend(widePath.c_str());
        }
        m_handle = static_cast<long long>(reinterpret_cast<intptr_t>(handle));
    }
    catch (...)
    {
        return false;
    }
    return IsOpen();
}

bool AppendFile::Append(const char* bytes, size_t length) noexcept
{
    if (!IsOpen() || length > ULONG_MAX)
    {
        return false;
    }
    DWORD written = 0;
    return WriteFile(ToHandle(m_handle), bytes, static_cast<DWORD>(length), &written, nullptr) != FALSE &&
           written == length;
}

void AppendFile::Close() noexcept
{
    if (IsOpen())
    {
        CloseHandle(ToHandle(m_handle));
        m_handle = kNone;
    }
}

} // namespace tsypr
