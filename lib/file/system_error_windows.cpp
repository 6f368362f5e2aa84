#include "lib/file/system_file.h"

#include <windows.h>

namespace tsypr
{
namespace
{

// The headers lack these.
constexpr DWORD kErrorDirectoryNotSupported = 336;
constexpr DWORD kErrorDiskQuotaExceeded = 1295;

constexpr ErrorMeaning kMeanings[] = {{ERROR_SUCCESS, FileError::None},
                                      {ERROR_INVALID_PARAMETER, FileError::InvalidArgument},
                                      {ERROR_INVALID_NAME, FileError::InvalidArgument},
                                      {ERROR_BAD_PATHNAME, FileError::InvalidArgument},
                                      {ERROR_FILE_NOT_FOUND, FileError::NotFound},
                                      {ERROR_PATH_NOT_FOUND, FileError::NotFound},
                                      {ERROR_INVALID_DRIVE, FileError::NotFound},
                                      {ERROR_BAD_NETPATH, FileError::NotFound},
                                      {ERROR_BAD_NET_NAME, FileError::NotFound},
                                      {ERROR_ALREADY_EXISTS, FileError::AlreadyExists},
                                      {ERROR_FILE_EXISTS, FileError::AlreadyExists},
                                      {ERROR_ACCESS_DENIED, FileError::AccessDenied},
                                      {ERROR_WRITE_PROTECT, FileError::AccessDenied},
                                      {ERROR_SHARING_VIOLATION, FileError::InUse},
                                      {ERROR_LOCK_VIOLATION, FileError::InUse},
                                      {ERROR_USER_MAPPED_FILE, FileError::InUse},
                                      {ERROR_DELETE_PENDING, FileError::InUse},
                                      {ERROR_BUSY, FileError::InUse},
                                      {ERROR_DISK_FULL, FileError::DiskFull},
                                      {ERROR_HANDLE_DISK_FULL, FileError::DiskFull},
                                      {kErrorDiskQuotaExceeded, FileError::DiskFull},
                                      {ERROR_FILENAME_EXCED_RANGE, FileError::NameTooLong},
                                      {ERROR_BUFFER_OVERFLOW, FileError::NameTooLong},
                                      {ERROR_DIR_NOT_EMPTY, FileError::NotEmpty},
                                      {ERROR_DIRECTORY, FileError::NotADirectory},
                                      {kErrorDirectoryNotSupported, FileError::IsADirectory},
                                      {ERROR_FILE_TOO_LARGE, FileError::TooLarge},
                                      {ERROR_NOT_ENOUGH_MEMORY, FileError::OutOfMemory},
                                      {ERROR_OUTOFMEMORY, FileError::OutOfMemory},
                                      {ERROR_TIMEOUT, FileError::TimedOut},
                                      {ERROR_NOT_SAME_DEVICE, FileError::OtherVolume},
                                      {ERROR_GEN_FAILURE, FileError::Other}};

} // namespace

std::span<const ErrorMeaning> ErrorMeanings() noexcept
{
    return kMeanings;
}

bool sys::PassesByItself(SystemError error, const NativePath& path) noexcept
{
    if (error != ERROR_ACCESS_DENIED)
    {
        return ToFileError(error) == FileError::InUse;
    }
    // Also the answer for a file that is gone as soon as its last user closes it, and for replacing one that is open.
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes == INVALID_FILE_ATTRIBUTES
               ? GetLastError() == ERROR_ACCESS_DENIED
               : (attributes & FILE_ATTRIBUTE_READONLY) == 0 || (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

} // namespace tsypr
