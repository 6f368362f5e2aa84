#include "lib/file/native_path.h"

#include "lib/unicode/codeset.h"

#include <windows.h>

#include <algorithm>
#include <new>

namespace tsypr
{
namespace
{

constexpr size_t kLongestPath = 32767;
constexpr wchar_t kVerbatim[] = L"\\\\?\\";
constexpr wchar_t kVerbatimShare[] = L"\\\\?\\UNC\\";
constexpr wchar_t kDevice[] = L"\\\\.\\";

// Makes a path complete and resolves its dots and slashes, which Windows does not do behind "\\?\".
SystemError Complete(const NativePath& path, NativePath& complete)
{
    DWORD room = static_cast<DWORD>(path.size()) + MAX_PATH;
    for (;;)
    {
        complete.resize(room);
        const DWORD length = GetFullPathNameW(path.c_str(), room, complete.data(), nullptr);
        if (length == 0)
        {
            return GetLastError();
        }
        if (length < room)
        {
            complete.resize(length);
            return 0;
        }
        room = length + 1;
    }
}

// A part longer than any file system takes gives different errors, depending on which.
bool HasTooLongPart(const NativePath& path) noexcept
{
    constexpr size_t kLongestPart = 255;
    size_t begin = 0;
    for (size_t end = 0; begin <= path.size(); begin = end + 1)
    {
        end = std::min(path.find(L'\\', begin), path.size());
        if (end - begin > kLongestPart)
        {
            return true;
        }
    }
    return false;
}

} // namespace

SystemError ToNativePath(const char* path, NativePath& native)
{
    if (path == nullptr || *path == '\0')
    {
        return ERROR_INVALID_PARAMETER;
    }
    const std::string_view text(path);
    if (text.size() > kMaxUtf8Bytes * kLongestPath)
    {
        return ERROR_FILENAME_EXCED_RANGE;
    }
    NativePath wide;
    wide.reserve(text.size()); // so that the conversion itself can only fail for ill-formed text
    if (!CodeSet_Utf8ToUtf16(text, wide))
    {
        return ERROR_INVALID_PARAMETER;
    }
    if (wide.starts_with(kVerbatim))
    {
        native = std::move(wide);
        std::replace(native.begin(), native.end(), L'/', L'\\'); // no name has it
        return 0;
    }
    NativePath complete;
    if (const SystemError error = Complete(wide, complete))
    {
        return error;
    }
    while (complete.size() > 3 && complete.back() == L'\\')
    {
        complete.pop_back();
    }
    if (complete.size() >= kLongestPath || HasTooLongPart(complete))
    {
        return ERROR_FILENAME_EXCED_RANGE;
    }
    if (complete.starts_with(kDevice))
    {
        native = std::move(complete);
    }
    else if (complete.starts_with(L"\\\\"))
    {
        native = kVerbatimShare + complete.substr(2);
    }
    else
    {
        native = kVerbatim + complete;
    }
    return 0;
}

std::string ToUtf8(const NativePath& name)
{
    std::string text;
    if (!CodeSet_Utf16ToUtf8(name, text))
    {
        throw std::bad_alloc();
    }
    return text;
}

} // namespace tsypr
