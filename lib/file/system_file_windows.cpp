#include "lib/file/system_file.h"

#include "lib/file/system_call_windows.h"

#include <algorithm>
#include <cstring>

namespace tsypr::sys
{
namespace
{

constexpr size_t kMostAtOnce = 1U << 30;
constexpr DWORD kCopiedAttributes =
    FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

// Far behind what any file holds: Windows lets nobody read a locked range.
constexpr DWORD kLockOffsetHigh = 0x4000'0000;

FileHandle FromHandle(HANDLE handle) noexcept
{
    return static_cast<FileHandle>(reinterpret_cast<intptr_t>(handle));
}

DWORD AccessRights(Access access) noexcept
{
    switch (access)
    {
    case Access::Read:
        return GENERIC_READ;
    case Access::Write:
        return GENERIC_WRITE;
    case Access::Append:
        // Without FILE_WRITE_DATA every write goes to the end; locking takes the right to read.
        return FILE_APPEND_DATA | FILE_READ_DATA | SYNCHRONIZE;
    case Access::ReadWrite:
        break;
    }
    return GENERIC_READ | GENERIC_WRITE;
}

DWORD Disposition(Creation creation) noexcept
{
    switch (creation)
    {
    case Creation::OpenOrCreate:
    case Creation::Truncate: // emptied after opening: CREATE_ALWAYS would refuse hidden files
        return OPEN_ALWAYS;
    case Creation::CreateNew:
        return CREATE_NEW;
    case Creation::OpenExisting:
        break;
    }
    return OPEN_EXISTING;
}

// Windows denies access to directories opened as files; tell them from other denials.
SystemError ExplainDenial(SystemError error, const NativePath& path) noexcept
{
    if (error != ERROR_ACCESS_DENIED)
    {
        return error;
    }
    const DWORD attributes = GetFileAttributesW(path.c_str());
    const bool directory = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return directory ? ToSystemError(FileError::IsADirectory) : error;
}

// The part of the model's access list that it has of its own or inherited, as one copy.
void CopyAccessList(const NativePath& model, HANDLE to)
{
    const UniqueHandle from = OpenHandle(model, READ_CONTROL, kShareAll, FILE_ATTRIBUTE_NORMAL);
    DWORD size = 0;
    if (from == nullptr || GetKernelObjectSecurity(from.get(), DACL_SECURITY_INFORMATION, nullptr, 0, &size) ||
        GetLastError() != ERROR_INSUFFICIENT_BUFFER)
    {
        return;
    }
    std::vector<std::byte> descriptor(size);
    if (GetKernelObjectSecurity(from.get(), DACL_SECURITY_INFORMATION, descriptor.data(), size, &size) != FALSE)
    {
        SetKernelObjectSecurity(to, DACL_SECURITY_INFORMATION, descriptor.data());
    }
}

// As SetFileInformationByHandle takes it; the headers hide the flags and the class from older targets.
constexpr auto kFileRenameInfoEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(22);
struct RenameRequest
{
    DWORD flags;
    HANDLE folder;
    DWORD nameBytes;
    wchar_t name[1];
};

SystemError RenameOpen(HANDLE handle, const NativePath& to, bool overwrite)
{
    constexpr DWORD kReplace = 1;
    constexpr DWORD kPosixSemantics = 2; // also over a file that others have open
    const size_t nameBytes = to.size() * sizeof(wchar_t);
    std::vector<std::byte> buffer(sizeof(RenameRequest) + nameBytes);
    auto* const request = reinterpret_cast<RenameRequest*>(buffer.data());
    request->flags = overwrite ? kReplace | kPosixSemantics : 0;
    request->nameBytes = static_cast<DWORD>(nameBytes);
    std::memcpy(request->name, to.c_str(), nameBytes);
    const auto size = static_cast<DWORD>(buffer.size());
    return Call(FileOperation::Rename,
                [&]
                {
                    if (overwrite && SetFileInformationByHandle(handle, kFileRenameInfoEx, request, size) != FALSE)
                    {
                        return true;
                    }
                    // Older systems and other file systems do not know that.
                    request->flags = overwrite ? kReplace : 0;
                    return SetFileInformationByHandle(handle, FileRenameInfo, request, size) != FALSE;
                });
}

} // namespace

SystemError Open(const NativePath& path, Access access, Creation creation, FileHandle& handle, bool keepsName) noexcept
{
    if (access == Access::Append && creation == Creation::Truncate)
    {
        // Who may only append cannot make a file shorter.
        const SystemError error = Open(path, Access::Write, creation, handle, keepsName);
        if (error != 0)
        {
            return error;
        }
        Close(handle);
        return Open(path, access, Creation::OpenExisting, handle, keepsName);
    }
    HANDLE opened = INVALID_HANDLE_VALUE;
    const DWORD share = keepsName ? FILE_SHARE_READ | FILE_SHARE_WRITE : kShareAll;
    const SystemError error = Call(FileOperation::Open,
                                   [&]
                                   {
                                       opened = CreateFileW(path.c_str(),
                                                            AccessRights(access),
                                                            share,
                                                            nullptr,
                                                            Disposition(creation),
                                                            FILE_ATTRIBUTE_NORMAL,
                                                            nullptr);
                                       return opened != INVALID_HANDLE_VALUE;
                                   });
    handle = kNoFile;
    if (error != 0)
    {
        return ExplainDenial(error, path);
    }
    if (creation == Creation::Truncate && SetEndOfFile(opened) == FALSE)
    {
        const SystemError failed = GetLastError();
        CloseHandle(opened);
        return failed;
    }
    handle = FromHandle(opened);
    return 0;
}

SystemError Read(FileHandle handle, void* buffer, size_t length, size_t& read) noexcept
{
    size_t most = std::min(length, kMostAtOnce);
    SystemError error = InjectedFault(FileOperation::Read, &most);
    DWORD count = 0;
    if (error == 0 && ReadFile(ToHandle(handle), buffer, static_cast<DWORD>(most), &count, nullptr) == FALSE)
    {
        error = GetLastError();
    }
    read = count;
    return error;
}

SystemError Write(FileHandle handle, const void* buffer, size_t length, size_t& written) noexcept
{
    size_t most = std::min(length, kMostAtOnce);
    SystemError error = InjectedFault(FileOperation::Write, &most);
    DWORD count = 0;
    if (error == 0 && WriteFile(ToHandle(handle), buffer, static_cast<DWORD>(most), &count, nullptr) == FALSE)
    {
        error = GetLastError();
    }
    written = count;
    return error;
}

SystemError Seek(FileHandle handle, uint64_t offset) noexcept
{
    LARGE_INTEGER position = {};
    position.QuadPart = static_cast<LONGLONG>(offset);
    return SetFilePointerEx(ToHandle(handle), position, nullptr, FILE_BEGIN) != FALSE ? 0 : GetLastError();
}

SystemError Size(FileHandle handle, uint64_t& bytes) noexcept
{
    LARGE_INTEGER size = {};
    const SystemError error =
        Call(FileOperation::Status, [&] { return GetFileSizeEx(ToHandle(handle), &size) != FALSE; });
    bytes = static_cast<uint64_t>(size.QuadPart);
    return error;
}

SystemError Resize(FileHandle handle, uint64_t bytes) noexcept
{
    FILE_END_OF_FILE_INFO end = {};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(bytes);
    return Call(
        FileOperation::Resize,
        [&] { return SetFileInformationByHandle(ToHandle(handle), FileEndOfFileInfo, &end, sizeof(end)) != FALSE; });
}

SystemError Flush(FileHandle handle) noexcept
{
    return Call(FileOperation::Flush, [&] { return FlushFileBuffers(ToHandle(handle)) != FALSE; });
}

SystemError Close(FileHandle handle) noexcept
{
    const SystemError injected = InjectedFault(FileOperation::Close);
    return CloseHandle(ToHandle(handle)) != FALSE ? injected : GetLastError();
}

bool IsStillAt(FileHandle /*handle*/, const NativePath& /*path*/) noexcept
{
    return true; // opened so that nobody may rename or delete it
}

SystemError TryLock(FileHandle handle, bool exclusive) noexcept
{
    OVERLAPPED range = {};
    range.OffsetHigh = kLockOffsetHigh;
    const DWORD flags = LOCKFILE_FAIL_IMMEDIATELY | (exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0);
    return Call(FileOperation::Lock, [&] { return LockFileEx(ToHandle(handle), flags, 0, 1, 0, &range) != FALSE; });
}

void Unlock(FileHandle handle) noexcept
{
    OVERLAPPED range = {};
    range.OffsetHigh = kLockOffsetHigh;
    UnlockFileEx(ToHandle(handle), 0, 1, 0, &range); // closing alone may take its time
}

SystemError CreateMarked(const NativePath& path, const NativePath& model, bool sameAccess, FileHandle& handle)
{
    handle = kNoFile;
    DWORD attributes = model.empty() ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(model.c_str());
    attributes = attributes == INVALID_FILE_ATTRIBUTES ? 0 : attributes & kCopiedAttributes;
    const bool copyAccess = sameAccess && !model.empty();
    HANDLE created = INVALID_HANDLE_VALUE;
    // That nobody else may delete it is the mark.
    const SystemError error = Call(FileOperation::Open,
                                   [&]
                                   {
                                       created = CreateFileW(path.c_str(),
                                                             GENERIC_WRITE | DELETE | (copyAccess ? WRITE_DAC : 0),
                                                             FILE_SHARE_READ,
                                                             nullptr,
                                                             CREATE_NEW,
                                                             attributes == 0 ? FILE_ATTRIBUTE_NORMAL : attributes,
                                                             nullptr);
                                       return created != INVALID_HANDLE_VALUE;
                                   });
    if (error != 0)
    {
        return error;
    }
    handle = FromHandle(created);
    if (copyAccess)
    {
        CopyAccessList(model, created);
    }
    return 0;
}

void RemoveUnmarked(const NativePath& path) noexcept
{
    OpenHandle(path, DELETE, kShareAll, FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT);
}

SystemError RenameMarked(FileHandle handle, const NativePath& /*from*/, const NativePath& to, bool overwrite)
{
    return RenameOpen(ToHandle(handle), to, overwrite);
}

SystemError Rename(const NativePath& from, const NativePath& to, bool overwrite)
{
    const UniqueHandle file =
        OpenHandle(from, DELETE | SYNCHRONIZE, kShareAll, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT);
    return file == nullptr ? GetLastError() : RenameOpen(file.get(), to, overwrite);
}

SystemError FlushRename(FileHandle handle, const NativePath& /*folder*/) noexcept
{
    return Flush(handle); // takes the file's names along
}

SystemError CopyTimes(FileHandle from, FileHandle to) noexcept
{
    FILETIME created = {};
    FILETIME read = {};
    FILETIME written = {};
    const bool copied = GetFileTime(ToHandle(from), &created, &read, &written) != FALSE &&
                        SetFileTime(ToHandle(to), nullptr, &read, &written) != FALSE;
    return copied ? 0 : GetLastError();
}

} // namespace tsypr::sys
