#include "lib/file/system_file.h"

#include <cerrno>

namespace tsypr
{
namespace
{

struct Meaning
{
    int code;
    FileError error;
};

// The first row of a meaning is the code that stands for it.
constexpr Meaning kMeanings[] = {{0, FileError::None},
                                 {EINVAL, FileError::InvalidArgument},
                                 {EILSEQ, FileError::InvalidArgument},
                                 {ENOENT, FileError::NotFound},
                                 {EEXIST, FileError::AlreadyExists},
                                 {EACCES, FileError::AccessDenied},
                                 {EPERM, FileError::AccessDenied},
                                 {EROFS, FileError::AccessDenied},
                                 {EBUSY, FileError::InUse},
                                 {ETXTBSY, FileError::InUse},
                                 {EWOULDBLOCK, FileError::InUse},
                                 {ENOSPC, FileError::DiskFull},
                                 {EDQUOT, FileError::DiskFull},
                                 {ENAMETOOLONG, FileError::NameTooLong},
                                 {ENOTEMPTY, FileError::NotEmpty},
                                 {ENOTDIR, FileError::NotADirectory},
                                 {EISDIR, FileError::IsADirectory},
                                 {EFBIG, FileError::TooLarge},
                                 {ENOMEM, FileError::OutOfMemory},
                                 {ETIMEDOUT, FileError::TimedOut},
                                 {EXDEV, FileError::OtherVolume},
                                 {EIO, FileError::Other}};

} // namespace

FileError ToFileError(SystemError error) noexcept
{
    for (const Meaning& meaning : kMeanings)
    {
        if (static_cast<SystemError>(meaning.code) == error)
        {
            return meaning.error;
        }
    }
    return FileError::Other;
}

SystemError ToSystemError(FileError error) noexcept
{
    for (const Meaning& meaning : kMeanings)
    {
        if (meaning.error == error)
        {
            return static_cast<SystemError>(meaning.code);
        }
    }
    return EIO;
}

bool sys::PassesByItself(SystemError error, const NativePath& /*path*/) noexcept
{
    return ToFileError(error) == FileError::InUse;
}

} // namespace tsypr
