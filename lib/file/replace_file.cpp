#include "lib/file/replace_file.h"

#include "lib/file/temporary_file.h"

namespace tsypr
{
namespace
{

SystemError Replace(const NativePath& target, std::string_view contents, Retrier& retrier)
{
    bool exists = false;
    SystemError error = retrier.Run(target, [&] { return CheckReplaceable(target, exists); });
    if (error != 0)
    {
        return error;
    }
    TemporaryFile file(target, retrier);
    error = file.Create(exists ? target : NativePath(), true);
    if (error == 0)
    {
        error = file.Write(contents.data(), contents.size());
    }
    return error == 0 ? file.Commit(true) : error;
}

} // namespace

FileResult ReplaceFileContents(const char* path, std::string_view contents, const RetryPolicy& retry) noexcept
{
    return Guarded(
        [&]
        {
            Retrier retrier(retry);
            NativePath target;
            SystemError error = ToNativePath(path, target);
            if (error == 0 && contents.data() == nullptr && !contents.empty())
            {
                error = ToSystemError(FileError::InvalidArgument);
            }
            if (error == 0)
            {
                error = sys::FollowLinks(target);
            }
            return retrier.Result(error == 0 ? Replace(target, contents, retrier) : error);
        });
}

} // namespace tsypr
