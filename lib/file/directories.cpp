#include "lib/file/operations.h"

#include "lib/file/retrier.h"

namespace tsypr
{
namespace
{

bool IsDirectory(const NativePath& path) noexcept
{
    FileStatus status;
    return sys::Status(path, status) == 0 && status.kind == FileKind::Directory;
}

SystemError MakeTree(const NativePath& path)
{
    if (IsDirectory(path))
    {
        return 0;
    }
    SystemError error = sys::MakeFolder(path);
    if (ToFileError(error) == FileError::NotFound)
    {
        const NativePath parent = ParentOf(path);
        if (parent.empty())
        {
            return error;
        }
        error = MakeTree(parent);
        if (ToFileError(error) == FileError::AlreadyExists)
        {
            return ToSystemError(FileError::NotADirectory);
        }
        error = error == 0 ? sys::MakeFolder(path) : error;
    }
    // Somebody else may have made it meanwhile.
    return ToFileError(error) == FileError::AlreadyExists && IsDirectory(path) ? 0 : error;
}

SystemError CheckRealDirectory(const NativePath& path) noexcept
{
    FileStatus status;
    const SystemError error = sys::LinkStatus(path, status);
    return error == 0 && status.kind != FileKind::Directory ? ToSystemError(FileError::NotADirectory) : error;
}

bool IsGone(SystemError error) noexcept
{
    return ToFileError(error) == FileError::NotFound;
}

// Removes a folder and all in it, as far as that is possible, and keeps the first failure.
class TreeRemoval
{
public:
    explicit TreeRemoval(Retrier& retrier) noexcept : m_retrier(retrier) {}

    SystemError FirstError() const noexcept
    {
        return m_firstError;
    }

    // Returns whether nothing is left.
    bool Remove(const NativePath& folder)
    {
        // On Windows a file may go on being listed for a moment after its deletion, when others have it open.
        uint32_t pause = 1;
        SystemError error = 0;
        do
        {
            if (!RemoveEntries(folder))
            {
                return false;
            }
            error = m_retrier.Run(folder, [&] { return sys::DeleteEmptyFolder(folder); });
        } while (ToFileError(error) == FileError::NotEmpty && m_retrier.Pause(error, pause));
        return Note(error);
    }

private:
    bool RemoveEntries(const NativePath& folder)
    {
        std::vector<sys::Entry> entries;
        const SystemError error = m_retrier.Run(folder,
                                                [&]
                                                {
                                                    entries.clear();
                                                    return sys::List(folder, {}, entries);
                                                });
        bool removed = Note(error);
        for (const sys::Entry& entry : entries)
        {
            removed = RemoveEntry(JoinPath(folder, entry.name), entry) && removed;
        }
        return removed;
    }

    bool RemoveEntry(const NativePath& path, const sys::Entry& entry)
    {
        if (entry.status.kind == FileKind::Directory)
        {
            return Remove(path);
        }
        if (entry.status.readOnly)
        {
            sys::ClearReadOnly(path);
        }
        return Note(m_retrier.Run(
            path, [&] { return entry.isFolderLink ? sys::DeleteEmptyFolder(path) : sys::DeleteFileOrLink(path); }));
    }

    bool Note(SystemError error) noexcept
    {
        if (error == 0 || IsGone(error))
        {
            return true;
        }
        m_firstError = m_firstError == 0 ? error : m_firstError;
        return false;
    }

    Retrier& m_retrier;
    SystemError m_firstError = 0;
};

} // namespace

FileResult MakeDirectory(const char* path) noexcept
{
    return OnPath(path, [](const NativePath& native) { return sys::MakeFolder(native); });
}

FileResult MakeDirectoryTree(const char* path) noexcept
{
    return OnPath(path, [](const NativePath& native) { return MakeTree(native); });
}

FileResult RemoveEmptyDirectory(const char* path, const RetryPolicy& retry) noexcept
{
    return OnPath(path,
                  retry,
                  [](const NativePath& native, Retrier& retrier)
                  {
                      const SystemError error = CheckRealDirectory(native);
                      return error != 0 ? error : retrier.Run(native, [&] { return sys::DeleteEmptyFolder(native); });
                  });
}

FileResult RemoveDirectoryTree(const char* path, const RetryPolicy& retry) noexcept
{
    return OnPath(path,
                  retry,
                  [](const NativePath& native, Retrier& retrier)
                  {
                      const SystemError error = CheckRealDirectory(native);
                      if (error != 0)
                      {
                          return error;
                      }
                      TreeRemoval removal(retrier);
                      removal.Remove(native);
                      return removal.FirstError();
                  });
}

} // namespace tsypr
