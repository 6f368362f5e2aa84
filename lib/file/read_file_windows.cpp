#include "lib/file/read_file.h"

#include "lib/unicode/codeset.h"

#include <windows.h>

#include <memory>

namespace tsypr
{
namespace
{

struct CloseFile
{
    void operator()(HANDLE handle) const noexcept
    {
        CloseHandle(handle);
    }
};
using UniqueFile = std::unique_ptr<void, CloseFile>;

bool ReadAll(HANDLE file, size_t maxBytes, std::string& out)
{
    LARGE_INTEGER size = {};
    if (GetFileSizeEx(file, &size) == FALSE || size.QuadPart < 0 || static_cast<uint64_t>(size.QuadPart) > maxBytes)
    {
        return false;
    }
    out.resize(static_cast<size_t>(size.QuadPart));
    DWORD read = 0;
    if (ReadFile(file, out.data(), static_cast<DWORD>(out.size()), &read, nullptr) == FALSE)
    {
        return false;
    }
    out.resize(read);
    return true;
}

} // namespace

bool ReadWholeFile(const char* path, size_t maxBytes, std::string& out) noexcept
{
    out.clear();
    try
    {
        std::wstring widePath;
        if (path == nullptr || !CodeSet_Utf8ToUtf16(path, widePath))
        {
            return false;
        }
        const HANDLE handle = CreateFileW(widePath.c_str(),
                                          GENERIC_READ,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                          nullptr,
                                          OPEN_EXISTING,
                                          FILE_ATTRIBUTE_NORMAL,
                                          nullptr);
        if (handle == INVALID_HANDLE_VALUE)
        {
            return false;
        }
        const UniqueFile file(handle);
        if (!ReadAll(handle, maxBytes, out))
        {
            out.clear();
            return false;
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
