#include "lib/file/append_file.h"

#include "lib/file/retrier.h"

#include <utility>

namespace tsypr
{
namespace
{

SystemError OpenForAppend(const NativePath& path, FileHandle& handle) noexcept
{
    return sys::Open(path, sys::Access::Append, sys::Creation::OpenOrCreate, handle);
}

} // namespace

bool AppendFile::Open(const char* path) noexcept
{
    Close();
    const FileResult result = Guarded(
        [&]
        {
            NativePath native;
            SystemError error = ToNativePath(path, native);
            if (error == 0)
            {
                error = OpenForAppend(native, m_handle);
            }
            if (ToFileError(error) == FileError::NotFound && sys::MakeFolder(ParentOf(native)) == 0)
            {
                error = OpenForAppend(native, m_handle);
            }
            return ToResult(error);
        });
    return result.Ok();
}

bool AppendFile::Append(const char* bytes, size_t length) noexcept
{
    size_t written = 0;
    return IsOpen() && (bytes != nullptr || length == 0) && sys::Write(m_handle, bytes, length, written) == 0 &&
           written == length;
}

void AppendFile::Close() noexcept
{
    if (IsOpen())
    {
        sys::Close(std::exchange(m_handle, kNone));
    }
}

} // namespace tsypr
