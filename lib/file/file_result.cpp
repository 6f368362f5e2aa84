#include "lib/file/file_result.h"

namespace tsypr
{

const char* FileErrorText(FileError error) noexcept
{
    switch (error)
    {
    case FileError::None:
        return "no error";
    case FileError::InvalidArgument:
        return "invalid argument";
    case FileError::NotFound:
        return "not found";
    case FileError::AlreadyExists:
        return "already there";
    case FileError::AccessDenied:
        return "access denied";
    case FileError::InUse:
        return "in use by another process";
    case FileError::DiskFull:
        return "disk full";
    case FileError::NameTooLong:
        return "name too long";
    case FileError::NotEmpty:
        return "not empty";
    case FileError::NotADirectory:
        return "not a directory";
    case FileError::IsADirectory:
        return "is a directory";
    case FileError::TooLarge:
        return "too large";
    case FileError::OutOfMemory:
        return "out of memory";
    case FileError::TimedOut:
        return "timed out";
    case FileError::OtherVolume:
        return "on another volume";
    case FileError::Other:
        break;
    }
    return "system error";
}

} // namespace tsypr
