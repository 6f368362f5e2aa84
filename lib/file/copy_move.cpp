#include "lib/file/operations.h"

#include "lib/file/temporary_file.h"

#include <memory>
#include <utility>

namespace tsypr
{
namespace
{

constexpr size_t kBlock = 256 * 1024;

class OpenedFile
{
public:
    OpenedFile() = default;
    ~OpenedFile()
    {
        Close();
    }
    OpenedFile(const OpenedFile&) = delete;
    OpenedFile& operator=(const OpenedFile&) = delete;

    void Close() noexcept
    {
        if (handle != kNoFile)
        {
            sys::Close(std::exchange(handle, kNoFile));
        }
    }

    FileHandle handle = kNoFile;
};

SystemError CopyBytes(FileHandle from, TemporaryFile& to)
{
    const auto block = std::make_unique<char[]>(kBlock);
    for (;;)
    {
        size_t read = 0;
        SystemError error = sys::Read(from, block.get(), kBlock, read);
        if (error == 0 && read != 0)
        {
            error = to.Write(block.get(), read);
        }
        if (error != 0 || read == 0)
        {
            return error;
        }
    }
}

SystemError Copy(const NativePath& from, const NativePath& target, bool overwrite, Retrier& retrier)
{
    NativePath to = target;
    OpenedFile source;
    SystemError error = retrier.Run(
        from, [&] { return sys::Open(from, sys::Access::Read, sys::Creation::OpenExisting, source.handle); });
    bool exists = false;
    if (error == 0)
    {
        error = sys::FollowLinks(to);
    }
    if (error == 0)
    {
        error = retrier.Run(to, [&] { return CheckReplaceable(to, exists); });
    }
    if (exists && !overwrite)
    {
        error = ToSystemError(FileError::AlreadyExists);
    }
    if (error != 0)
    {
        return error;
    }
    TemporaryFile copy(to, retrier);
    error = copy.Create(exists ? to : from, exists);
    if (error == 0)
    {
        error = CopyBytes(source.handle, copy);
    }
    if (error == 0)
    {
        error = sys::CopyTimes(source.handle, copy.Handle());
    }
    source.Close(); // it may be the target as well
    return error == 0 ? copy.Commit(overwrite) : error;
}

SystemError CheckMove(const NativePath& from, const NativePath& to, bool overwrite, FileStatus& source)
{
    SystemError error = sys::LinkStatus(from, source);
    FileStatus target;
    if (error != 0 || !overwrite || sys::LinkStatus(to, target) != 0)
    {
        return error; // the renaming itself finds out what else is wrong
    }
    if (source.kind == FileKind::Directory)
    {
        error = ToSystemError(FileError::AlreadyExists);
    }
    else if (target.kind == FileKind::Directory)
    {
        error = ToSystemError(FileError::IsADirectory);
    }
    else if (target.readOnly)
    {
        error = ToSystemError(FileError::AccessDenied);
    }
    return error;
}

// The source may be in use as well as the target.
SystemError RenameWithRetries(const NativePath& from, const NativePath& to, bool overwrite, Retrier& retrier)
{
    return retrier.Run(to, [&] { return retrier.Run(from, [&] { return sys::Rename(from, to, overwrite); }); });
}

SystemError Move(const NativePath& from, const NativePath& to, bool overwrite, Retrier& retrier)
{
    FileStatus source;
    SystemError error = CheckMove(from, to, overwrite, source);
    if (error != 0)
    {
        return error;
    }
    error = RenameWithRetries(from, to, overwrite, retrier);
    if (ToFileError(error) != FileError::OtherVolume || source.kind != FileKind::File)
    {
        return error;
    }
    error = Copy(from, to, overwrite, retrier);
    return error == 0 ? retrier.Run(from, [&] { return sys::DeleteFileOrLink(from); }) : error;
}

using Operation = SystemError (*)(const NativePath& from, const NativePath& to, bool overwrite, Retrier& retrier);

FileResult WithPaths(
    const char* from, const char* to, bool overwrite, const RetryPolicy& retry, Operation operation) noexcept
{
    return OnPath(from,
                  retry,
                  [&](const NativePath& source, Retrier& retrier)
                  {
                      NativePath target;
                      const SystemError error = ToNativePath(to, target);
                      return error == 0 ? operation(source, target, overwrite, retrier) : error;
                  });
}

} // namespace

FileResult CopyFileTo(const char* from, const char* to, bool overwrite, const RetryPolicy& retry) noexcept
{
    return WithPaths(from, to, overwrite, retry, Copy);
}

FileResult MoveFileTo(const char* from, const char* to, bool overwrite, const RetryPolicy& retry) noexcept
{
    return WithPaths(from, to, overwrite, retry, Move);
}

} // namespace tsypr
