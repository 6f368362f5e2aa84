// Files and folders by name. All paths are UTF-8; on Windows they may be longer than 260 characters and use either
// slash. Every function documents nothing but what is special: all never throw, all answer FileError::InvalidArgument
// for a null, empty or ill-formed path.
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
    uint64_t bytes = 0;
    int64_t modifiedMs = 0; // UTC, since 1970-01-01
    bool readOnly = false;
};

struct DirectoryEntry
{
    std::string name; // without the folder
    FileStatus status;
};

FileResult GetFileStatus(const char* path, FileStatus& status) noexcept;

// Whether there is something at the path; false also when that cannot be told.
bool PathExists(const char* path) noexcept;

// Copies contents and times. With `overwrite` false an existing target is AlreadyExists; a target is replaced whole.
FileResult CopyFileTo(const char* from, const char* to, bool overwrite, const RetryPolicy& retry = {}) noexcept;

// Renames, or copies and deletes when the target is on another volume.
FileResult MoveFileTo(const char* from, const char* to, bool overwrite, const RetryPolicy& retry = {}) noexcept;

// A file that is missing is NotFound.
FileResult RemoveFile(const char* path, const RetryPolicy& retry = {}) noexcept;

// One level; AlreadyExists when it is there already.
FileResult MakeDirectory(const char* path) noexcept;

// All missing levels; a directory that is there already is a success.
FileResult MakeDirectoryTree(const char* path) noexcept;

// An empty one.
FileResult RemoveEmptyDirectory(const char* path, const RetryPolicy& retry = {}) noexcept;

// A directory with everything in it, links as links. Goes on past what cannot be removed and returns the first failure.
FileResult RemoveDirectoryTree(const char* path, const RetryPolicy& retry = {}) noexcept;

// The entries sorted by name, without "." and "..".
FileResult ListDirectory(const char* path, std::vector<DirectoryEntry>& entries) noexcept;

// Bytes that this user may still write on the volume of the path.
FileResult GetFreeDiskSpace(const char* path, uint64_t& bytes) noexcept;

} // namespace tsypr

#endif
