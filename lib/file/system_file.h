// The system's file calls, each with the same meaning on every platform and with its place for injected faults. For the
// files of this folder only. Interrupted calls are made again here; what another process is in the way of is not.
#ifndef TESSARY_LIB_FILE_SYSTEM_FILE_H
#define TESSARY_LIB_FILE_SYSTEM_FILE_H

#include "lib/file/file_result.h"
#include "lib/file/native_path.h"
#include "lib/file/operations.h"

#include <span>
#include <vector>

namespace tsypr
{

// A HANDLE or a file descriptor.
using FileHandle = long long;
inline constexpr FileHandle kNoFile = -1;

// What a system error means to callers, and the system's error for a meaning.
FileError ToFileError(SystemError error) noexcept;
SystemError ToSystemError(FileError error) noexcept;

struct ErrorMeaning
{
    SystemError code;
    FileError error;
};

// The system's errors that mean something to callers. The first row of a meaning is the code that stands for it, the
// last row what stands for all else.
std::span<const ErrorMeaning> ErrorMeanings() noexcept;

} // namespace tsypr

namespace tsypr::sys
{

enum class Access
{
    Read,
    Write,
    ReadWrite,
    Append // every write goes to the end, also when others append
};

enum class Creation
{
    OpenExisting,
    OpenOrCreate,
    Truncate, // open or create, then empty
    CreateNew // AlreadyExists when it is there
};

// Whether the error is one that passes by itself: another process, or a deletion under way, keeps the path from us.
bool PassesByItself(SystemError error, const NativePath& path) noexcept;

// Children do not inherit the handle. Others may read, write, rename and delete the file meanwhile, except that with
// `keepsName` Windows lets nobody rename or delete it. A directory is IsADirectory.
SystemError Open(
    const NativePath& path, Access access, Creation creation, FileHandle& handle, bool keepsName = false) noexcept;
SystemError Read(FileHandle handle, void* buffer, size_t length, size_t& read) noexcept;           // may be short
SystemError Write(FileHandle handle, const void* buffer, size_t length, size_t& written) noexcept; // may be short
SystemError WriteAll(FileHandle handle, const void* bytes, size_t length) noexcept;
SystemError Seek(FileHandle handle, uint64_t offset) noexcept;
SystemError Size(FileHandle handle, uint64_t& bytes) noexcept;
SystemError Resize(FileHandle handle, uint64_t bytes) noexcept;
SystemError Flush(FileHandle handle) noexcept;
SystemError Close(FileHandle handle) noexcept; // closes also when it reports an error

// Whether the open file is still the one at the path.
bool IsStillAt(FileHandle handle, const NativePath& path) noexcept;

// An advisory lock on the whole file, asked for once; InUse when others hold it. Closing releases it. It lies where it
// is in nobody's way who reads the file.
SystemError TryLock(FileHandle handle, bool exclusive) noexcept;
void Unlock(FileHandle handle) noexcept;

// A temporary file's life: created under a name that must be new, and marked as belonging to a living process until it
// is closed. `model` is the file whose permissions (Windows: attributes) it gets; with `sameAccess` also the owner
// (Windows: the access list), as far as we may. An empty model means the folder's usual ones.
SystemError CreateMarked(const NativePath& path, const NativePath& model, bool sameAccess, FileHandle& handle);

// Removes a file that CreateMarked made, unless the process that made it still has it open.
void RemoveUnmarked(const NativePath& path) noexcept;

// Renames the file that CreateMarked opened; nobody sees a moment without a file at `to`. Without `overwrite` an
// existing target is AlreadyExists.
SystemError RenameMarked(FileHandle handle, const NativePath& from, const NativePath& to, bool overwrite);

// Makes the renaming last: flushes the folder to the disk, or what the system has in place of that.
SystemError FlushRename(FileHandle handle, const NativePath& folder) noexcept;

SystemError CopyTimes(FileHandle from, FileHandle to) noexcept;

SystemError Rename(const NativePath& from, const NativePath& to, bool overwrite);

// A link goes, to whatever it leads, and not that.
SystemError DeleteFileOrLink(const NativePath& path) noexcept;
SystemError DeleteEmptyFolder(const NativePath& path) noexcept;
SystemError MakeFolder(const NativePath& path) noexcept;

// Of what a link at the path leads to.
SystemError Status(const NativePath& path, FileStatus& status) noexcept;

// Of a link itself.
SystemError LinkStatus(const NativePath& path, FileStatus& status) noexcept;

// Leads a path that is a symbolic link to where its file is or would be.
SystemError FollowLinks(NativePath& path);

// Lets a read-only file be deleted, where the system minds.
void ClearReadOnly(const NativePath& path) noexcept;

struct Entry
{
    NativePath name;
    FileStatus status;
};

// The entries whose names begin with `prefix`, in no order, without "." and "..".
SystemError List(const NativePath& folder, const NativePath& prefix, std::vector<Entry>& entries);

// Of the volume of an existing file or folder.
SystemError FreeSpace(const NativePath& path, uint64_t& bytes);

// The name of this process's program and of this computer, for those who wait for it; "" when not known.
std::string ProgramName();
std::string ComputerName();

} // namespace tsypr::sys

#endif
