#include "lib/file/append_system.h"
#include "lib/file/system_call_posix.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tsypr::sys
{

SystemError OpenToAppend(const NativePath& path, bool /*shared*/, FileHandle& handle) noexcept
{
    while (true)
    {
        const SystemError error = Open(path, Access::Append, Creation::OpenOrCreate, handle);
        if (error != 0)
        {
            return error;
        }
        // RemoveUnused holds it for a moment only. On a file system without locks that can lock nothing either.
        while (flock(static_cast<int>(handle), LOCK_SH) != 0 && errno == EINTR)
        {
        }
        if (!IsDeleted(handle))
        {
            return 0;
        }
        Close(handle); // it was removed between the two calls
    }
}

bool MayLeadTo(const NativePath& path, FileHandle handle) noexcept
{
    struct stat open = {};
    struct stat named = {};
    if (fstat(static_cast<int>(handle), &open) != 0)
    {
        return true;
    }
    if (stat(path.c_str(), &named) != 0)
    {
        return errno != ENOENT && errno != ENOTDIR;
    }
    return open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

bool IsDeleted(FileHandle handle) noexcept
{
    struct stat status = {};
    return fstat(static_cast<int>(handle), &status) == 0 && status.st_nlink == 0;
}

SystemError RemoveUnused(const NativePath& path) noexcept
{
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0)
    {
        return LastError();
    }
    SystemError error = flock(descriptor, LOCK_EX | LOCK_NB) == 0 ? 0 : LastError();
    if (error == 0 && !MayLeadTo(path, descriptor))
    {
        error = EBUSY; // another file has its name now
    }
    if (error == 0)
    {
        error = Call(FileOperation::Delete, [&path] { return unlink(path.c_str()); });
    }
    close(descriptor);
    return error;
}

} // namespace tsypr::sys
