#include "lib/file/system_file.h"

#include <cerrno>

namespace tsypr
{
namespace
{

constexpr ErrorMeaning kMeanings[] = {{0, FileError::None},
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

std::span<const ErrorMeaning> ErrorMeanings() noexcept
{
    return kMeanings;
}

bool sys::PassesByItself(SystemError error, const NativePath& /*path*/) noexcept
{
    return ToFileError(error) == FileError::InUse;
}

} // namespace tsypr
