#include "lib/file/operations.h"

#include "lib/file/retrier.h"

#include <utility>

namespace tsypr
{
namespace
{

bool IsDirectory(const NativePath& path) noexcept
{
    FileStatus status;
    return sys::Status(path, status) == 0 && status.kind == FileKind::Directory;
}

SystemError MakeLevel(const NativePath& path)
{
    const SystemError error = sys::MakeFolder(path);
    // Somebody else may have made it meanwhile.
    return ToFileError(error) == FileError::AlreadyExists && IsDirectory(path) ? 0 : error;
}

// Goes up to the first level that is there or can be made, and down again. Where the levels end in the path is kept in
// a list: there may be as many as a path has characters, which no stack of a host's thread must bear.
SystemError MakeTree(const NativePath& path)
{
    std::vector<size_t> missing;
    NativePath level = path;
    SystemError error = IsDirectory(level) ? 0 : MakeLevel(level);
    while (ToFileError(error) == FileError::NotFound)
    {
        const NativePath parent = ParentOf(level);
        if (parent.empty() || parent == level)
        {
            return error;
        }
        missing.push_back(level.size());
        level = parent;
        error = IsDirectory(level) ? 0 : MakeLevel(level);
    }
    for (; error == 0 && !missing.empty(); missing.pop_back())
    {
        error = MakeLevel(path.substr(0, missing.back()));
    }
    // A file in place of a level, unless it is the last one.
    return ToFileError(error) == FileError::AlreadyExists && !missing.empty() ? ToSystemError(FileError::NotADirectory)
                                                                              : error;
}

SystemError CheckRealDirectory(const NativePath& path) noexcept
{
    FileStatus status;
    const SystemError error = sys::LinkStatus(path, status);
    return error == 0 && status.kind != FileKind::Directory ? ToSystemError(FileError::NotADirectory) : error;
}

// Removes a folder and all in it, as far as that is possible, and keeps the first failure. The folders that it is in
// are a list: with recursion a thread's stack would limit the depth.
class TreeRemoval
{
public:
    TreeRemoval(NativePath root, Retrier& retrier) : m_retrier(retrier), m_path(std::move(root)) {}

    // Returns the first failure.
    SystemError Run()
    {
        Enter();
        while (!m_levels.empty())
        {
            std::vector<NativePath>& folders = m_levels.back().folders;
            if (folders.empty())
            {
                Leave();
                continue;
            }
            m_path = JoinPath(m_path, folders.back());
            folders.pop_back();
            Enter();
        }
        return m_firstError;
    }

private:
    struct Level
    {
        size_t pathLength = 0;
        std::vector<NativePath> folders; // in it, and not entered yet
        bool emptied = true;             // as far as we got
        uint32_t pause = 1;
    };

    void Enter()
    {
        m_levels.emplace_back().pathLength = m_path.size();
        RemoveFiles();
    }

    void RemoveFiles()
    {
        Level& level = m_levels.back();
        std::vector<sys::Entry> entries;
        const SystemError error = m_retrier.Run(m_path,
                                                [&]
                                                {
                                                    entries.clear();
                                                    return sys::List(m_path, {}, entries);
                                                });
        level.emptied = Note(error);
        for (sys::Entry& entry : entries)
        {
            if (entry.status.kind == FileKind::Directory)
            {
                level.folders.push_back(std::move(entry.name));
                continue;
            }
            const NativePath path = JoinPath(m_path, entry.name);
            if (entry.status.readOnly)
            {
                sys::ClearReadOnly(path);
            }
            level.emptied = Note(m_retrier.Run(path, [&] { return sys::DeleteFileOrLink(path); })) && level.emptied;
        }
    }

    // Removes the innermost folder, when nothing is left in it.
    void Leave()
    {
        Level& level = m_levels.back();
        if (level.emptied)
        {
            const SystemError error = m_retrier.Run(m_path, [&] { return sys::DeleteEmptyFolder(m_path); });
            // On Windows a file may go on being listed for a moment after its deletion, when others have it open.
            if (ToFileError(error) == FileError::NotEmpty && m_retrier.Pause(error, level.pause))
            {
                RemoveFiles();
                return;
            }
            level.emptied = Note(error);
        }
        const bool emptied = level.emptied;
        m_levels.pop_back();
        if (!m_levels.empty())
        {
            m_levels.back().emptied = emptied && m_levels.back().emptied;
            m_path.resize(m_levels.back().pathLength);
        }
    }

    // Returns whether there was no failure.
    bool Note(SystemError error) noexcept
    {
        if (error == 0 || ToFileError(error) == FileError::NotFound)
        {
            return true;
        }
        m_firstError = m_firstError == 0 ? error : m_firstError;
        return false;
    }

    Retrier& m_retrier;
    NativePath m_path; // of the innermost level
    std::vector<Level> m_levels;
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
                      return error != 0 ? error : TreeRemoval(native, retrier).Run();
                  });
}

} // namespace tsypr
