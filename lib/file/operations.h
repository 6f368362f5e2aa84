// Files and folders by name. All paths are UTF-8; on Windows they may be longer than 260 characters and use either
// slash.
//
// No function throws. All of them answer InvalidArgument for a null, empty or ill-formed path, NameTooLong for one that
// the system does not take, NotFound when it or a folder on the way to it is missing or has vanished, NotADirectory or
// NotFound when something on the way is no folder, AccessDenied where permissions or a read-only folder stand against
// it, and OutOfMemory. Those that create something answer DiskFull when there is no room for it. Those with a retry
// policy answer InUse (on Windows in some cases AccessDenied) when another process was in the way all the time.
#ifndef TESSARY_LIB_FILE_OPERATIONS_H
#define TESSARY_LIB_FILE_OPERATIONS_H

#include "lib/file/file_result.h"
#include "lib/file/retry_policy.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tsypr
{

enum class FileKind
{
    File,
    Directory,
    Other // a link, a device, ...
};

struct FileStatus
{
    FileKind kind = FileKind::Other;
    uint64_t bytes = 0;     // 0 for all but files
    int64_t modifiedMs = 0; // UTC, since 1970-01-01
    bool readOnly = false;  // nobody may write to it, whatever rights this process has
};

struct DirectoryEntry
{
    std::string name; // without the folder
    FileStatus status;
};

// Of what a link leads to: a link that leads nowhere is NotFound. `status` is empty when it fails.
FileResult GetFileStatus(const char* path, FileStatus& status) noexcept;

// Whether there is something at the path; false also when that cannot be told.
bool PathExists(const char* path) noexcept;

// Copies contents, times and permissions (Windows: attributes); the copy is on the disk before it gets its name. With
// `overwrite` false an existing target is AlreadyExists; else it is replaced whole, as ReplaceFileContents does it, and
// keeps its own permissions. AccessDenied when it is read-only, IsADirectory when either is a directory. A full disk
// leaves no part of a copy.
FileResult CopyFileTo(const char* from, const char* to, bool overwrite, const RetryPolicy& retry = {}) noexcept;

// Renames a file or directory, or copies and deletes a file when the target is on another volume; a directory is then
// OtherVolume. With `overwrite` a file replaces a file; AccessDenied when that is read-only, IsADirectory when it is a
// directory. A directory never replaces anything: AlreadyExists. It cannot be moved into itself.
FileResult MoveFileTo(const char* from, const char* to, bool overwrite, const RetryPolicy& retry = {}) noexcept;

// Removes a file or a link, not what it leads to; on Windows a link or junction to a directory, too. A file that is
// missing is NotFound, a read-only one AccessDenied, on every system; a directory is IsADirectory.
FileResult RemoveFile(const char* path, const RetryPolicy& retry = {}) noexcept;

// One level; AlreadyExists when it, or a file of that name, is there already.
FileResult MakeDirectory(const char* path) noexcept;

// All missing levels; a directory that is there already is a success, a file of that name AlreadyExists. Levels that
// were made stay when a later one fails.
FileResult MakeDirectoryTree(const char* path) noexcept;

// An empty one; otherwise NotEmpty. NotADirectory for a file or a link.
FileResult RemoveEmptyDirectory(const char* path, const RetryPolicy& retry = {}) noexcept;

// A directory with everything in it, read-only files too, links as links. Goes on past what cannot be removed and
// returns the first failure. What vanishes meanwhile is no failure. NotADirectory for a file or a link. Not for folders
// in which somebody with fewer rights could put links while it runs. However deep it is, a thread's stack does not
// matter; what lies deeper than the system's longest path cannot be named and stays: NameTooLong.
FileResult RemoveDirectoryTree(const char* path, const RetryPolicy& retry = {}) noexcept;

// The entries sorted by name, byte by byte, without "." and ".."; links as links. Empty when it fails. A name that is
// not well-formed comes with replacement characters on Windows, as it is elsewhere.
FileResult ListDirectory(const char* path, std::vector<DirectoryEntry>& entries) noexcept;

// Bytes that this user may still write on the volume of an existing file or directory; 0 when it fails.
FileResult GetFreeDiskSpace(const char* path, uint64_t& bytes) noexcept;

} // namespace tsypr

#endif
