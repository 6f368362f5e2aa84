#include "lib/file/append_file.h"

#include "lib/file/append_system.h"
#include "lib/file/retrier.h"

#include <utility>

namespace tsypr
{
bool AppendFile::Open(const char* path, AppendMode mode) noexcept
{
    Close();
    m_shared = mode == AppendMode::Shared;
    const FileResult result = Guarded(
        [&]
        {
            NativePath native;
            SystemError error = ToNativePath(path, native);
            if (error == 0)
            {
                error = sys::OpenToAppend(native, m_shared, m_handle);
            }
            if (ToFileError(error) == FileError::NotFound && sys::MakeFolder(ParentOf(native)) == 0)
            {
                error = sys::OpenToAppend(native, m_shared, m_handle);
            }
            return ToResult(error);
        });
    return result.Ok();
}

bool AppendFile::Append(const char* bytes, size_t length, size_t* written) noexcept
{
    size_t count = 0;
    bool done = false;
    if (IsOpen() && (bytes != nullptr || length == 0))
    {
        const sys::AppendTurn turn(m_handle, m_shared ? sys::Patience::Long : sys::Patience::None);
        done = sys::Write(m_handle, bytes, length, count) == 0 && count == length;
    }
    if (written != nullptr)
    {
        *written = count;
    }
    return done;
}

bool AppendFile::AppendImpatiently(const char* bytes, size_t length) noexcept
{
    size_t count = 0;
    const sys::AppendTurn turn(m_handle, m_shared && IsOpen() ? sys::Patience::Short : sys::Patience::None);
    return IsOpen() && bytes != nullptr && sys::Write(m_handle, bytes, length, count) == 0 && count == length;
}

uint64_t AppendFile::Size() const noexcept
{
    uint64_t bytes = 0;
    return IsOpen() && sys::Size(m_handle, bytes) == 0 ? bytes : 0;
}

bool AppendFile::IsStillAt(const char* path) const noexcept
{
    bool there = true;
    Guarded(
        [&]
        {
            NativePath native;
            const SystemError error = IsOpen() ? ToNativePath(path, native) : ToSystemError(FileError::Other);
            there = error != 0 || sys::MayLeadTo(native, m_handle);
            return ToResult(error);
        });
    return there;
}

bool AppendFile::IsDeleted() const noexcept
{
    return IsOpen() && sys::IsDeleted(m_handle);
}

void AppendFile::TakeFrom(AppendFile& other) noexcept
{
    // There is no moment without an open file: at the end of the process another thread may have stopped anywhere.
    m_shared = other.m_shared;
    const FileHandle old = std::exchange(m_handle, std::exchange(other.m_handle, kNone));
    if (old != kNone)
    {
        sys::Close(old);
    }
}

void AppendFile::Close() noexcept
{
    if (IsOpen())
    {
        sys::Close(std::exchange(m_handle, kNone));
    }
}

bool RemoveUnusedFile(const char* path) noexcept
{
    const FileResult result = Guarded(
        [&]
        {
            NativePath native;
            const SystemError error = ToNativePath(path, native);
            return ToResult(error == 0 ? sys::RemoveUnused(native) : error);
        });
    return result.Ok();
}

} // namespace tsypr
