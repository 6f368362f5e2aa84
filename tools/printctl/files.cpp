#include "tools/printctl/files.h"

#include "tools/printctl/errors.h"

#include <windows.h>

#include <fstream>

namespace tsypr::printctl
{

namespace
{

constexpr uintmax_t kLargestFile = 16u << 20;

void Move(const fs::path& from, const fs::path& to, DWORD flags = 0)
{
    if (MoveFileExW(from.c_str(), to.c_str(), flags) == FALSE)
    {
        const DWORD error = GetLastError();
        ThrowSystem("moving " + Shown(from) + " to " + Shown(to), error);
    }
}

void Delete(const fs::path& path)
{
    if (DeleteFileW(path.c_str()) == FALSE && GetLastError() != ERROR_FILE_NOT_FOUND)
    {
        const DWORD error = GetLastError();
        ThrowSystem("deleting " + Shown(path), error);
    }
}

// A name beside the target that is free, or whose file can be deleted.
fs::path SpareName(const fs::path& target, const wchar_t* kind)
{
    for (int i = 0; i < 100; ++i)
    {
        fs::path name = target;
        name += kind + std::to_wstring(i);
        if (DeleteFileW(name.c_str()) != FALSE || GetLastError() == ERROR_FILE_NOT_FOUND)
        {
            return name;
        }
    }
    throw Failure(ExitCode::System, "no free name for a copy of " + Shown(target));
}

// A loaded library cannot be deleted before the programs that use it end: Windows then does it at the next start.
void DeleteNowOrLater(const fs::path& path)
{
    if (DeleteFileW(path.c_str()) == FALSE)
    {
        MoveFileExW(path.c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
    }
}

// Out of the way under a spare name; back on failure, deleted on success.
void MoveAside(UndoLog& undo, const fs::path& target)
{
    const fs::path aside = SpareName(target, L".old");
    Move(target, aside);
    undo.OnFailure("replacing " + Shown(target), [aside, target] { Move(aside, target, MOVEFILE_REPLACE_EXISTING); });
    undo.OnSuccess([aside] { DeleteNowOrLater(aside); });
}

// A new file of ours that has to go on failure. One that is loaded by now steps aside and is deleted later.
void ForgetOnFailure(UndoLog& undo, const fs::path& target)
{
    undo.OnFailure("placing " + Shown(target),
                   [target]
                   {
                       if (DeleteFileW(target.c_str()) == FALSE && GetLastError() != ERROR_FILE_NOT_FOUND)
                       {
                           const fs::path aside = SpareName(target, L".old");
                           Move(target, aside);
                           DeleteNowOrLater(aside);
                       }
                   });
}

void PlaceFresh(UndoLog& undo, const fs::path& fresh, const fs::path& target)
{
    if (fs::exists(target))
    {
        MoveAside(undo, target);
    }
    Move(fresh, target);
    ForgetOnFailure(undo, target);
}

} // namespace

std::string Shown(const fs::path& path)
{
    return Quoted(path.wstring());
}

bool IsFile(const fs::path& path) noexcept
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

std::vector<uint8_t> ReadWholeFile(const fs::path& path)
{
    std::error_code error;
    const uintmax_t size = fs::file_size(path, error);
    if (error)
    {
        throw Failure(ExitCode::BadFile, "cannot read " + Shown(path) + ": there is no such file");
    }
    if (size > kLargestFile)
    {
        throw Failure(ExitCode::BadFile, "cannot read " + Shown(path) + ": it is too large");
    }
    std::vector<uint8_t> bytes(static_cast<size_t>(size));
    std::ifstream file(path, std::ios::binary);
    if (!file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size())))
    {
        throw Failure(ExitCode::BadFile, "cannot read " + Shown(path));
    }
    return bytes;
}

void WriteWholeFile(const fs::path& path, const void* bytes, size_t size)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(size));
    file.close();
    if (!file)
    {
        throw Failure(ExitCode::System, "cannot write " + Shown(path));
    }
}

bool SameContent(const fs::path& left, const fs::path& right)
{
    std::error_code error;
    const uintmax_t size = fs::file_size(left, error);
    if (error || size != fs::file_size(right, error) || error)
    {
        return false;
    }
    return ReadWholeFile(left) == ReadWholeFile(right);
}

void InstallFile(UndoLog& undo, const fs::path& source, const fs::path& target)
{
    if (SameContent(source, target))
    {
        return;
    }
    const fs::path fresh = SpareName(target, L".new");
    if (CopyFileW(source.c_str(), fresh.c_str(), FALSE) == FALSE)
    {
        const DWORD error = GetLastError();
        ThrowSystem("copying " + Shown(source) + " to " + Shown(fresh), error);
    }
    SetFileAttributesW(fresh.c_str(), FILE_ATTRIBUTE_NORMAL);
    undo.OnFailure("copying to " + Shown(fresh), [fresh] { Delete(fresh); });
    PlaceFresh(undo, fresh, target);
}

void InstallText(UndoLog& undo, std::string_view text, const fs::path& target)
{
    const fs::path fresh = SpareName(target, L".new");
    undo.OnFailure("writing " + Shown(fresh), [fresh] { Delete(fresh); });
    WriteWholeFile(fresh, text.data(), text.size());
    if (SameContent(fresh, target))
    {
        Delete(fresh);
        return;
    }
    PlaceFresh(undo, fresh, target);
}

void RemoveFile(UndoLog& undo, const fs::path& target)
{
    if (IsFile(target))
    {
        MoveAside(undo, target);
    }
}

void MakeRoom(UndoLog& undo, const fs::path& source, const fs::path& target)
{
    if (SameContent(source, target))
    {
        return;
    }
    RemoveFile(undo, target);
    ForgetOnFailure(undo, target);
}

void CreateFolders(UndoLog& undo, const fs::path& folder)
{
    if (folder.empty() || fs::is_directory(folder))
    {
        return;
    }
    CreateFolders(undo, folder.parent_path());
    if (CreateDirectoryW(folder.c_str(), nullptr) == FALSE)
    {
        const DWORD error = GetLastError();
        ThrowSystem("creating folder " + Shown(folder), error);
    }
    // A folder that somebody else has used in the meantime, for instance for a log, stays.
    undo.OnFailure("creating folder " + Shown(folder), [folder] { RemoveDirectoryW(folder.c_str()); });
}

} // namespace tsypr::printctl
