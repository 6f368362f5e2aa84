#include "lib/file/system_file.h"

#include "lib/file/system_call_windows.h"
#include "lib/misc/file_time_windows.h"

#include <algorithm>
#include <iterator>

namespace tsypr::sys
{
namespace
{

struct CloseFind
{
    void operator()(HANDLE handle) const noexcept
    {
        FindClose(handle);
    }
};
using UniqueFind = std::unique_ptr<void, CloseFind>;

FileStatus ToStatus(DWORD attributes, bool isLink, FILETIME modified, DWORD sizeHigh, DWORD sizeLow) noexcept
{
    const bool directory = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    FileStatus status;
    status.kind = isLink ? FileKind::Other : directory ? FileKind::Directory : FileKind::File;
    status.bytes = directory ? 0 : (uint64_t{sizeHigh} << 32) | sizeLow;
    status.modifiedMs = ToUtcMilliseconds(modified);
    status.readOnly = !directory && (attributes & FILE_ATTRIBUTE_READONLY) != 0; // on folders it means something else
    return status;
}

// Other reparse points, such as files kept in a cloud, are what they look like. Wine does not tell the tag; there they
// are links.
bool IsLink(const WIN32_FIND_DATAW& found) noexcept
{
    constexpr DWORD kTags[] = {0, IO_REPARSE_TAG_SYMLINK, IO_REPARSE_TAG_MOUNT_POINT};
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           std::find(std::begin(kTags), std::end(kTags), found.dwReserved0) != std::end(kTags);
}

bool FindOne(const NativePath& path, WIN32_FIND_DATAW& found) noexcept
{
    const HANDLE find = FindFirstFileW(path.c_str(), &found);
    if (find == INVALID_HANDLE_VALUE)
    {
        return false;
    }
    FindClose(find);
    return true;
}

bool IsLinkAt(const NativePath& path, DWORD attributes) noexcept
{
    WIN32_FIND_DATAW found = {};
    return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && FindOne(path, found) && IsLink(found);
}

bool GetLinkStatus(const NativePath& path, FileStatus& status) noexcept
{
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data) == FALSE)
    {
        return false;
    }
    status = ToStatus(data.dwFileAttributes,
                      IsLinkAt(path, data.dwFileAttributes),
                      data.ftLastWriteTime,
                      data.nFileSizeHigh,
                      data.nFileSizeLow);
    return true;
}

bool GetTargetStatus(const NativePath& path, FileStatus& status) noexcept
{
    const UniqueHandle file = OpenHandle(path, FILE_READ_ATTRIBUTES, kShareAll, FILE_FLAG_BACKUP_SEMANTICS);
    BY_HANDLE_FILE_INFORMATION data = {};
    if (file == nullptr || GetFileInformationByHandle(file.get(), &data) == FALSE)
    {
        return false;
    }
    status = ToStatus(data.dwFileAttributes, false, data.ftLastWriteTime, data.nFileSizeHigh, data.nFileSizeLow);
    return true;
}

bool IsDirectory(const NativePath& path) noexcept
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool HasPrefix(const wchar_t* name, const NativePath& prefix) noexcept
{
    const auto length = static_cast<int>(prefix.size());
    return wcslen(name) >= prefix.size() &&
           (length == 0 || CompareStringOrdinal(name, length, prefix.c_str(), length, TRUE) == CSTR_EQUAL);
}

bool IsDots(const wchar_t* name) noexcept
{
    return wcscmp(name, L".") == 0 || wcscmp(name, L"..") == 0;
}

// To the system a link to a folder is a folder. Wine, which tells no tag, would remove the one that it leads to.
bool DeleteName(const NativePath& path) noexcept
{
    if (DeleteFileW(path.c_str()) != FALSE)
    {
        return true;
    }
    const DWORD error = GetLastError();
    WIN32_FIND_DATAW found = {};
    if (error == ERROR_ACCESS_DENIED && FindOne(path, found) && IsLink(found) && found.dwReserved0 != 0 &&
        (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
    {
        return RemoveDirectoryW(path.c_str()) != FALSE;
    }
    SetLastError(error);
    return false;
}

Entry ToEntry(const WIN32_FIND_DATAW& found)
{
    Entry entry;
    entry.name = found.cFileName;
    entry.status =
        ToStatus(found.dwFileAttributes, IsLink(found), found.ftLastWriteTime, found.nFileSizeHigh, found.nFileSizeLow);
    return entry;
}

} // namespace

SystemError DeleteFileOrLink(const NativePath& path) noexcept
{
    return Call(FileOperation::Delete, [&] { return DeleteName(path); });
}

SystemError DeleteEmptyFolder(const NativePath& path) noexcept
{
    return Call(FileOperation::Delete, [&] { return RemoveDirectoryW(path.c_str()) != FALSE; });
}

SystemError MakeFolder(const NativePath& path) noexcept
{
    return Call(FileOperation::MakeDirectory, [&] { return CreateDirectoryW(path.c_str(), nullptr) != FALSE; });
}

SystemError LinkStatus(const NativePath& path, FileStatus& status) noexcept
{
    status = {};
    return Call(FileOperation::Status, [&] { return GetLinkStatus(path, status); });
}

SystemError Status(const NativePath& path, FileStatus& status) noexcept
{
    const SystemError error = LinkStatus(path, status);
    if (error != 0 || status.kind != FileKind::Other)
    {
        return error;
    }
    return GetTargetStatus(path, status) ? 0 : GetLastError();
}

SystemError FollowLinks(NativePath& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || !IsLinkAt(path, attributes))
    {
        return 0; // no link; anything else that is wrong with it shows when it is used
    }
    const UniqueHandle file = OpenHandle(path, FILE_READ_ATTRIBUTES, kShareAll, FILE_FLAG_BACKUP_SEMANTICS);
    if (file == nullptr)
    {
        return GetLastError();
    }
    NativePath target(GetFinalPathNameByHandleW(file.get(), nullptr, 0, 0), L'\0');
    const DWORD length = GetFinalPathNameByHandleW(file.get(), target.data(), static_cast<DWORD>(target.size()), 0);
    if (length == 0 || length >= target.size())
    {
        return length == 0 ? GetLastError() : ERROR_BUSY; // renamed meanwhile
    }
    target.resize(length);
    path = std::move(target);
    return 0;
}

void ClearReadOnly(const NativePath& path) noexcept
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES)
    {
        SetFileAttributesW(path.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
    }
}

SystemError List(const NativePath& folder, const NativePath& prefix, std::vector<Entry>& entries)
{
    const NativePath pattern = JoinPath(folder, prefix + L'*');
    WIN32_FIND_DATAW found = {};
    UniqueFind find;
    const SystemError error = Call(
        FileOperation::List,
        [&]
        {
            const HANDLE handle = FindFirstFileExW(
                pattern.c_str(), FindExInfoBasic, &found, FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
            find.reset(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
            return find != nullptr;
        });
    if (error == ERROR_FILE_NOT_FOUND && IsDirectory(folder))
    {
        return 0;
    }
    if (error != 0)
    {
        const bool isFile = GetFileAttributesW(folder.c_str()) != INVALID_FILE_ATTRIBUTES && !IsDirectory(folder);
        return isFile ? ERROR_DIRECTORY : error;
    }
    do
    {
        if (!IsDots(found.cFileName) && HasPrefix(found.cFileName, prefix))
        {
            entries.push_back(ToEntry(found));
        }
    } while (FindNextFileW(find.get(), &found) != FALSE);
    const SystemError end = GetLastError();
    return end == ERROR_NO_MORE_FILES ? 0 : end;
}

SystemError FreeSpace(const NativePath& path, uint64_t& bytes)
{
    FileStatus status;
    SystemError error = Status(path, status);
    if (error != 0)
    {
        return error;
    }
    const NativePath folder =
        JoinPath(status.kind == FileKind::Directory ? path : ParentOf(path), {}); // shares want "\\"
    ULARGE_INTEGER available = {};
    error = GetDiskFreeSpaceExW(folder.c_str(), &available, nullptr, nullptr) != FALSE ? 0 : GetLastError();
    bytes = available.QuadPart;
    return error;
}

std::string ProgramName()
{
    NativePath path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return ToUtf8(NameOf(path));
}

std::string ComputerName()
{
    wchar_t name[MAX_COMPUTERNAME_LENGTH + 1] = {};
    DWORD length = MAX_COMPUTERNAME_LENGTH + 1;
    return GetComputerNameW(name, &length) != FALSE ? ToUtf8(name) : std::string();
}

} // namespace tsypr::sys
