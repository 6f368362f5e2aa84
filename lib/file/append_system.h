// What the system does for files that several processes append to. For the files of this folder only.
#ifndef TESSARY_LIB_FILE_APPEND_SYSTEM_H
#define TESSARY_LIB_FILE_APPEND_SYSTEM_H

#include "lib/file/system_file.h"

namespace tsypr::sys
{

// Opens or creates the file so that what is written goes to its end; `shared` tells that other processes do the same.
// RemoveUnused keeps away from it until it is closed.
SystemError OpenToAppend(const NativePath& path, bool shared, FileHandle& handle) noexcept;

// False only if the path certainly leads nowhere or to another file.
bool MayLeadTo(const NativePath& path, FileHandle handle) noexcept;

// Whether the open file has no name any more.
bool IsDeleted(FileHandle handle) noexcept;

// Deletes the file unless somebody has it open, as far as the system knows.
SystemError RemoveUnused(const NativePath& path) noexcept;

// How long to wait for one's turn to append.
enum class Patience
{
    None,  // there are no turns
    Short, // milliseconds
    Long   // seconds
};

#ifdef _WIN32
// Not every Windows file system puts the appends of several processes one behind the other, folders of other machines
// among them. Those who append take turns by locking a place far behind any file's end.
class AppendTurn
{
public:
    AppendTurn(FileHandle handle, Patience patience) noexcept;
    ~AppendTurn();
    AppendTurn(const AppendTurn&) = delete;
    AppendTurn& operator=(const AppendTurn&) = delete;

private:
    const FileHandle m_handle;
    bool m_locked = false;
};
#else
// The system sees to it.
class AppendTurn
{
public:
    AppendTurn(FileHandle /*handle*/, Patience /*patience*/) noexcept {}
};
#endif

} // namespace tsypr::sys

#endif
