#include "lib/file/system_file.h"

#include "lib/file/system_call_posix.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <memory>
#include <string_view>

namespace tsypr::sys
{
namespace
{

constexpr int kLongestLinkChain = 40;

struct CloseFolder
{
    void operator()(DIR* folder) const noexcept
    {
        closedir(folder);
    }
};
using UniqueFolder = std::unique_ptr<DIR, CloseFolder>;

FileStatus ToStatus(const struct stat& status) noexcept
{
    FileStatus out;
    out.kind = S_ISREG(status.st_mode)   ? FileKind::File
               : S_ISDIR(status.st_mode) ? FileKind::Directory
                                         : FileKind::Other;
    out.bytes = S_ISREG(status.st_mode) ? static_cast<uint64_t>(status.st_size) : 0;
    out.modifiedMs = int64_t{status.st_mtim.tv_sec} * 1000 + status.st_mtim.tv_nsec / 1'000'000;
    out.readOnly = (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
    return out;
}

SystemError StatusAt(int folder, const char* path, int flags, FileStatus& out) noexcept
{
    struct stat status = {};
    const SystemError error = Call(FileOperation::Status, [&] { return fstatat(folder, path, &status, flags); });
    out = error == 0 ? ToStatus(status) : FileStatus();
    return error;
}

// For file systems that cannot rename without replacing: the look beforehand leaves a gap, which nothing can close.
SystemError RenameAfterALook(const NativePath& from, const NativePath& to) noexcept
{
    struct stat status = {};
    if (lstat(to.c_str(), &status) == 0)
    {
        return EEXIST;
    }
    return rename(from.c_str(), to.c_str()) != 0 ? LastError() : 0;
}

} // namespace

SystemError Rename(const NativePath& from, const NativePath& to, bool overwrite)
{
    if (overwrite)
    {
        return Call(FileOperation::Rename, [&] { return rename(from.c_str(), to.c_str()); });
    }
    SystemError error = ENOSYS;
#ifdef RENAME_NOREPLACE
    error = Call(FileOperation::Rename,
                 [&] { return renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE); });
#endif
    return error == ENOSYS || error == EINVAL ? RenameAfterALook(from, to) : error;
}

SystemError DeleteFileOrLink(const NativePath& path) noexcept
{
    return Call(FileOperation::Delete, [&] { return unlink(path.c_str()); });
}

SystemError DeleteEmptyFolder(const NativePath& path) noexcept
{
    const SystemError error = Call(FileOperation::Delete, [&] { return rmdir(path.c_str()); });
    return error == EEXIST ? ENOTEMPTY : error; // both are allowed to mean it
}

SystemError MakeFolder(const NativePath& path) noexcept
{
    return Call(FileOperation::MakeDirectory, [&] { return mkdir(path.c_str(), 0777); });
}

SystemError Status(const NativePath& path, FileStatus& status) noexcept
{
    return StatusAt(AT_FDCWD, path.c_str(), 0, status);
}

SystemError LinkStatus(const NativePath& path, FileStatus& status) noexcept
{
    return StatusAt(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, status);
}

SystemError FollowLinks(NativePath& path)
{
    for (int links = 0; links <= kLongestLinkChain; ++links)
    {
        NativePath target(PATH_MAX, '\0');
        const ssize_t length = readlink(path.c_str(), target.data(), target.size());
        if (length < 0)
        {
            return 0; // no link; anything else that is wrong with it shows when it is used
        }
        target.resize(static_cast<size_t>(length));
        path = target.starts_with('/') ? target : JoinPath(ParentOf(path), target);
    }
    return ELOOP;
}

void ClearReadOnly(const NativePath& /*path*/) noexcept
{
    // Deleting is the folder's matter here, not the file's.
}

SystemError List(const NativePath& folder, const NativePath& prefix, std::vector<Entry>& entries)
{
    UniqueFolder open;
    const SystemError error = Call(FileOperation::List,
                                   [&]
                                   {
                                       open.reset(opendir(folder.c_str()));
                                       return open == nullptr ? -1 : 0;
                                   });
    if (error != 0)
    {
        return error;
    }
    for (errno = 0; const dirent* const found = readdir(open.get()); errno = 0)
    {
        const std::string_view name = found->d_name;
        if (name == "." || name == ".." || !name.starts_with(prefix))
        {
            continue;
        }
        Entry entry;
        entry.name = name;
        const SystemError failed = StatusAt(dirfd(open.get()), found->d_name, AT_SYMLINK_NOFOLLOW, entry.status);
        if (failed == 0)
        {
            entries.push_back(std::move(entry));
        }
        else if (failed != ENOENT) // it may have vanished meanwhile
        {
            return failed;
        }
    }
    return LastError();
}

SystemError FreeSpace(const NativePath& path, uint64_t& bytes)
{
    struct statvfs volume = {};
    const SystemError error = Call(FileOperation::Status, [&] { return statvfs(path.c_str(), &volume); });
    bytes = uint64_t{volume.f_bavail} * volume.f_frsize;
    return error;
}

std::string ProgramName()
{
    std::string path(PATH_MAX, '\0');
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    path.resize(length < 0 ? 0 : static_cast<size_t>(length));
    return NameOf(path);
}

std::string ComputerName()
{
    char name[HOST_NAME_MAX + 1] = {};
    return gethostname(name, HOST_NAME_MAX) == 0 ? name : "";
}

} // namespace tsypr::sys
