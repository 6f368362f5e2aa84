#include "lib/file/replace_file.h"

#include "lib/file/temporary_file.h"

namespace tsypr
{
namespace
{

SystemError Replace(NativePath target, std::string_view contents, Retrier& retrier)
{
    if (contents.data() == nullptr && !contents.empty())
    {
        return ToSystemError(FileError::InvalidArgument);
    }
    bool exists = false;
    SystemError error = sys::FollowLinks(target);
    if (error == 0)
    {
        error = retrier.Run(target, [&] { return CheckReplaceable(target, exists); });
    }
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
    return OnPath(path,
                  retry,
                  [contents](const NativePath& target, Retrier& retrier)
                  { return Replace(target, contents, retrier); });
}

} // namespace tsypr
