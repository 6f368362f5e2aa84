#include "lib/file/operations.h"

#include "lib/file/retrier.h"

#include <algorithm>

namespace tsypr
{
namespace
{

SystemError CheckDeletable(const NativePath& path) noexcept
{
    FileStatus status;
    const SystemError error = sys::LinkStatus(path, status);
    if (error != 0)
    {
        return error;
    }
    if (status.kind == FileKind::Directory)
    {
        return ToSystemError(FileError::IsADirectory);
    }
    return status.readOnly ? ToSystemError(FileError::AccessDenied) : 0;
}

} // namespace

FileResult GetFileStatus(const char* path, FileStatus& status) noexcept
{
    status = {};
    return OnPath(path, [&](const NativePath& native) { return sys::Status(native, status); });
}

bool PathExists(const char* path) noexcept
{
    FileStatus status;
    return GetFileStatus(path, status).Ok();
}

FileResult RemoveFile(const char* path, const RetryPolicy& retry) noexcept
{
    return OnPath(path,
                  retry,
                  [](const NativePath& native, Retrier& retrier)
                  {
                      return retrier.Run(native,
                                         [&]
                                         {
                                             const SystemError checked = CheckDeletable(native);
                                             return checked != 0 ? checked : sys::DeleteFileOrLink(native);
                                         });
                  });
}

FileResult ListDirectory(const char* path, std::vector<DirectoryEntry>& entries) noexcept
{
    entries.clear();
    const FileResult result = Guarded(
        [&]
        {
            NativePath native;
            std::vector<sys::Entry> found;
            SystemError error = ToNativePath(path, native);
            if (error == 0)
            {
                error = sys::List(native, {}, found);
            }
            if (error == 0)
            {
                entries.reserve(found.size());
                for (const sys::Entry& entry : found)
                {
                    entries.push_back({ToUtf8(entry.name), entry.status});
                }
            }
            return ToResult(error);
        });
    if (!result.Ok())
    {
        entries.clear();
    }
    std::sort(entries.begin(),
              entries.end(),
              [](const DirectoryEntry& left, const DirectoryEntry& right) { return left.name < right.name; });
    return result;
}

FileResult GetFreeDiskSpace(const char* path, uint64_t& bytes) noexcept
{
    bytes = 0;
    return OnPath(path, [&](const NativePath& native) { return sys::FreeSpace(native, bytes); });
}

} // namespace tsypr
