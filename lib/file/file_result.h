// What came of a file operation, retries included.
#ifndef TESSARY_LIB_FILE_FILE_RESULT_H
#define TESSARY_LIB_FILE_FILE_RESULT_H

#include <cstdint>

namespace tsypr
{

// The failures that callers tell apart, the same on every platform.
enum class FileError
{
    None,
    InvalidArgument, // a null or empty path, one that is not well-formed UTF-8 or not allowed, a null buffer
    NotFound,        // the file or a folder on the way to it
    AlreadyExists,
    AccessDenied, // also a read-only file or folder
    InUse,        // another process keeps it from us: a sharing violation or a held lock
    DiskFull,
    NameTooLong,
    NotEmpty,
    NotADirectory,
    IsADirectory,
    TooLarge, // more than the caller's limit
    OutOfMemory,
    TimedOut,
    OtherVolume, // a directory cannot be moved to another volume
    Other        // see systemError
};

struct FileResult
{
    FileError error = FileError::None;
    uint32_t systemError = 0; // the system's own code (Windows error or errno) of the last attempt; 0 when it succeeded
    uint32_t retries = 0;     // how many attempts failed and were made again
    uint32_t lastRetriedError = 0; // the system's code of the last of them
    uint32_t elapsedMs = 0;        // the time that all attempts took together, pauses included; 0 without retries

    bool Ok() const noexcept
    {
        return error == FileError::None;
    }
};

// A failure that the system has no code for.
constexpr FileResult Failure(FileError error) noexcept
{
    FileResult result;
    result.error = error;
    return result;
}

// "disk full", "in use by another process" and the like, for messages. Never null.
const char* FileErrorText(FileError error) noexcept;

} // namespace tsypr

#endif
