#include "lib/file/system_file.h"

#include "lib/file/system_call_posix.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>

namespace tsypr::sys
{
namespace
{

constexpr mode_t kUsualMode = 0666; // less what the user's mask takes away
constexpr mode_t kPermissions = 0777;

int Descriptor(FileHandle handle) noexcept
{
    return static_cast<int>(handle);
}

int AccessFlags(Access access) noexcept
{
    switch (access)
    {
    case Access::Read:
        return O_RDONLY;
    case Access::Write:
        return O_WRONLY;
    case Access::Append:
        return O_WRONLY | O_APPEND;
    case Access::ReadWrite:
        break;
    }
    return O_RDWR;
}

int CreationFlags(Creation creation) noexcept
{
    switch (creation)
    {
    case Creation::OpenOrCreate:
        return O_CREAT;
    case Creation::Truncate:
        return O_CREAT | O_TRUNC;
    case Creation::CreateNew:
        return O_CREAT | O_EXCL;
    case Creation::OpenExisting:
        break;
    }
    return 0;
}

SystemError OpenDescriptor(const NativePath& path, int flags, mode_t mode, FileHandle& handle) noexcept
{
    handle = kNoFile;
    return Call(FileOperation::Open, [&] { return handle = open(path.c_str(), flags | O_CLOEXEC, mode); });
}

} // namespace

SystemError Open(
    const NativePath& path, Access access, Creation creation, FileHandle& handle, bool /*keepsName*/) noexcept
{
    const SystemError error = OpenDescriptor(path, AccessFlags(access) | CreationFlags(creation), kUsualMode, handle);
    struct stat status = {};
    if (error == 0 && access == Access::Read && fstat(Descriptor(handle), &status) == 0 && S_ISDIR(status.st_mode))
    {
        close(Descriptor(handle));
        handle = kNoFile;
        return EISDIR;
    }
    return error;
}

SystemError Read(FileHandle handle, void* buffer, size_t length, size_t& read) noexcept
{
    read = 0;
    for (;;)
    {
        size_t most = std::min<size_t>(length, SSIZE_MAX);
        SystemError error = InjectedFault(FileOperation::Read, &most);
        if (error == 0)
        {
            const ssize_t count = ::read(Descriptor(handle), buffer, most);
            error = count < 0 ? LastError() : 0;
            read = count < 0 ? 0 : static_cast<size_t>(count);
        }
        if (error != EINTR)
        {
            return error;
        }
    }
}

SystemError Write(FileHandle handle, const void* buffer, size_t length, size_t& written) noexcept
{
    written = 0;
    for (;;)
    {
        size_t most = std::min<size_t>(length, SSIZE_MAX);
        SystemError error = InjectedFault(FileOperation::Write, &most);
        if (error == 0)
        {
            const ssize_t count = write(Descriptor(handle), buffer, most);
            error = count < 0 ? LastError() : 0;
            written = count < 0 ? 0 : static_cast<size_t>(count);
        }
        if (error != EINTR)
        {
            return error;
        }
    }
}

SystemError Seek(FileHandle handle, uint64_t offset) noexcept
{
    return lseek(Descriptor(handle), static_cast<off_t>(offset), SEEK_SET) < 0 ? LastError() : 0;
}

SystemError Size(FileHandle handle, uint64_t& bytes) noexcept
{
    struct stat status = {};
    bytes = 0;
    const SystemError error = Call(FileOperation::Status, [&] { return fstat(Descriptor(handle), &status); });
    bytes = static_cast<uint64_t>(status.st_size);
    return error;
}

SystemError Resize(FileHandle handle, uint64_t bytes) noexcept
{
    return Call(FileOperation::Resize, [&] { return ftruncate(Descriptor(handle), static_cast<off_t>(bytes)); });
}

SystemError Flush(FileHandle handle) noexcept
{
    return Call(FileOperation::Flush, [&] { return fsync(Descriptor(handle)); });
}

SystemError Close(FileHandle handle) noexcept
{
    const SystemError injected = InjectedFault(FileOperation::Close);
    // An interrupted close has closed all the same.
    const bool closed = close(Descriptor(handle)) == 0 || errno == EINTR;
    return closed ? injected : LastError();
}

bool IsStillAt(FileHandle handle, const NativePath& path) noexcept
{
    struct stat open = {};
    struct stat named = {};
    return fstat(Descriptor(handle), &open) == 0 && stat(path.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
           open.st_ino == named.st_ino;
}

SystemError TryLock(FileHandle handle, bool exclusive) noexcept
{
    // Belongs to the open file, not to the process: so it excludes other handles of this process too.
    return Call(FileOperation::Lock,
                [&] { return flock(Descriptor(handle), (exclusive ? LOCK_EX : LOCK_SH) | LOCK_NB); });
}

void Unlock(FileHandle handle) noexcept
{
    flock(Descriptor(handle), LOCK_UN); // also for a copy that a fork has made
}

SystemError CreateMarked(const NativePath& path, const NativePath& model, bool sameAccess, FileHandle& handle)
{
    struct stat status = {};
    const bool hasModel = !model.empty() && stat(model.c_str(), &status) == 0;
    const mode_t mode = hasModel ? status.st_mode & kPermissions : kUsualMode;
    // Never more than the model's permissions, not even for a moment.
    const SystemError error = OpenDescriptor(path, O_WRONLY | O_CREAT | O_EXCL, mode, handle);
    if (error != 0)
    {
        return error;
    }
    const int descriptor = Descriptor(handle);
    const bool otherOwner = status.st_uid != geteuid() || status.st_gid != getegid();
    if (hasModel && sameAccess && otherOwner && fchown(descriptor, status.st_uid, status.st_gid) != 0)
    {
        errno = 0; // only the administrator may give a file away: it is ours then
    }
    if (hasModel && fchmod(descriptor, mode) != 0)
    {
        errno = 0; // a file system without permissions
    }
    // The lock is the mark; where there are no locks nobody tidies up. Whoever does may have got in between, and then
    // the name is as good as taken.
    const bool marked = flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
    if (marked && IsStillAt(handle, path))
    {
        return 0;
    }
    close(descriptor);
    handle = kNoFile;
    return EEXIST;
}

void RemoveUnmarked(const NativePath& path) noexcept
{
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0)
    {
        return;
    }
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0 && IsStillAt(descriptor, path))
    {
        unlink(path.c_str());
    }
    close(descriptor);
}

SystemError RenameMarked(FileHandle /*handle*/, const NativePath& from, const NativePath& to, bool overwrite)
{
    return Rename(from, to, overwrite);
}

SystemError FlushRename(FileHandle /*handle*/, const NativePath& folder) noexcept
{
    // A folder that may be entered but not read cannot be flushed by us.
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
    {
        return errno == EACCES ? 0 : LastError();
    }
    const SystemError error = Flush(descriptor);
    close(descriptor);
    return error == EINVAL || error == ENOTSUP ? 0 : error; // a file system that needs none
}

SystemError CopyTimes(FileHandle from, FileHandle to) noexcept
{
    struct stat status = {};
    if (fstat(Descriptor(from), &status) != 0)
    {
        return LastError();
    }
    const timespec times[] = {status.st_atim, status.st_mtim};
    return futimens(Descriptor(to), times) != 0 ? LastError() : 0;
}

} // namespace tsypr::sys
