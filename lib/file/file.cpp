#include "lib/file/file.h"

#include "lib/file/retrier.h"

#include <utility>

namespace tsypr
{
namespace
{

constexpr uint64_t kLargestOffset = 0x7FFF'FFFF'FFFF'FFFF;

sys::Access ToSystem(FileAccess access) noexcept
{
    switch (access)
    {
    case FileAccess::Read:
        return sys::Access::Read;
    case FileAccess::Write:
        return sys::Access::Write;
    case FileAccess::Append:
        return sys::Access::Append;
    case FileAccess::ReadWrite:
        break;
    }
    return sys::Access::ReadWrite;
}

sys::Creation ToSystem(FileCreation creation) noexcept
{
    switch (creation)
    {
    case FileCreation::OpenOrCreate:
        return sys::Creation::OpenOrCreate;
    case FileCreation::Truncate:
        return sys::Creation::Truncate;
    case FileCreation::CreateNew:
        return sys::Creation::CreateNew;
    case FileCreation::OpenExisting:
        break;
    }
    return sys::Creation::OpenExisting;
}

FileResult InvalidArgument() noexcept
{
    return ToResult(ToSystemError(FileError::InvalidArgument));
}

} // namespace

File::~File()
{
    Close();
}

File::File(File&& other) noexcept : m_handle(std::exchange(other.m_handle, kNone)) {}

File& File::operator=(File&& other) noexcept
{
    if (this != &other)
    {
        Close();
        m_handle = std::exchange(other.m_handle, kNone);
    }
    return *this;
}

FileResult File::Open(const char* path, FileAccess access, FileCreation creation, const RetryPolicy& retry) noexcept
{
    Close();
    if (access == FileAccess::Read && creation == FileCreation::Truncate)
    {
        return InvalidArgument();
    }
    return OnPath(path,
                  retry,
                  [&](const NativePath& native, Retrier& retrier) {
                      return retrier.Run(
                          native, [&] { return sys::Open(native, ToSystem(access), ToSystem(creation), m_handle); });
                  });
}

FileResult File::Read(void* buffer, size_t length, size_t& read) noexcept
{
    read = 0;
    if (!IsOpen() || (buffer == nullptr && length != 0))
    {
        return InvalidArgument();
    }
    while (read != length)
    {
        size_t count = 0;
        const SystemError error = sys::Read(m_handle, static_cast<char*>(buffer) + read, length - read, count);
        if (error != 0 || count == 0)
        {
            return ToResult(error);
        }
        read += count;
    }
    return {};
}

FileResult File::Write(const void* bytes, size_t length) noexcept
{
    if (!IsOpen() || (bytes == nullptr && length != 0))
    {
        return InvalidArgument();
    }
    return ToResult(sys::WriteAll(m_handle, bytes, length));
}

FileResult File::Seek(uint64_t offset) noexcept
{
    return IsOpen() && offset <= kLargestOffset ? ToResult(sys::Seek(m_handle, offset)) : InvalidArgument();
}

FileResult File::GetSize(uint64_t& bytes) noexcept
{
    bytes = 0;
    return IsOpen() ? ToResult(sys::Size(m_handle, bytes)) : InvalidArgument();
}

FileResult File::Resize(uint64_t bytes) noexcept
{
    return IsOpen() && bytes <= kLargestOffset ? ToResult(sys::Resize(m_handle, bytes)) : InvalidArgument();
}

FileResult File::Sync() noexcept
{
    return IsOpen() ? ToResult(sys::Flush(m_handle)) : InvalidArgument();
}

FileResult File::Close() noexcept
{
    return IsOpen() ? ToResult(sys::Close(std::exchange(m_handle, kNone))) : FileResult();
}

} // namespace tsypr
