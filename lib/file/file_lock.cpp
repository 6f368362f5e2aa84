#include "lib/file/file_lock.h"

#include "lib/file/retrier.h"
#include "lib/misc/clock.h"
#include "lib/misc/process.h"

#include <cstdio>

namespace tsypr
{
namespace
{

constexpr uint32_t kFirstPauseMs = 1;
constexpr uint32_t kLongestPauseMs = 50;
constexpr size_t kLongestOwner = 512;

std::string DescribeThisProcess()
{
    const UtcTime now = ToUtcTime(UtcNowMilliseconds());
    char since[80];
    std::snprintf(since,
                  sizeof(since),
                  "%04d-%02d-%02d %02d:%02d:%02dZ",
                  now.year,
                  now.month,
                  now.day,
                  now.hour,
                  now.minute,
                  now.second);
    return "process " + std::to_string(CurrentProcessId()) + " (" + sys::ProgramName() + ") on " + sys::ComputerName() +
           " since " + since + "\n";
}

// For those who wait. That it cannot be written, on a full disk for instance, is no reason not to have the lock.
void WriteOwner(FileHandle file)
{
    const std::string text = DescribeThisProcess();
    size_t written = 0;
    if (sys::Resize(file, 0) == 0 && sys::Seek(file, 0) == 0)
    {
        sys::Write(file, text.data(), text.size(), written);
    }
}

// Empty unless there is one whole line.
std::string ReadOwner(FileHandle file)
{
    std::string text(kLongestOwner, '\0');
    size_t read = 0;
    if (sys::Seek(file, 0) != 0 || sys::Read(file, text.data(), text.size(), read) != 0)
    {
        read = 0;
    }
    const size_t end = text.substr(0, read).find('\n');
    return end == std::string::npos ? std::string() : text.substr(0, end);
}

SystemError OpenLockFile(const NativePath& path, LockMode mode, FileHandle& file) noexcept
{
    const SystemError error = sys::Open(path, sys::Access::ReadWrite, sys::Creation::OpenOrCreate, file, true);
    if (mode == LockMode::Shared && ToFileError(error) == FileError::AccessDenied)
    {
        return sys::Open(path, sys::Access::Read, sys::Creation::OpenExisting, file, true);
    }
    return error;
}

// One attempt: the lock file opened, unless it is already, and the lock taken. Who removed the file meanwhile made the
// lock on it worthless; then the attempt counts as one that met another holder.
SystemError TryAcquire(const NativePath& path, LockMode mode, FileHandle& file) noexcept
{
    SystemError error = file == kNoFile ? OpenLockFile(path, mode, file) : 0;
    if (error == 0)
    {
        error = sys::TryLock(file, mode == LockMode::Exclusive);
    }
    if (file != kNoFile && !sys::IsStillAt(file, path))
    {
        sys::Close(file);
        file = kNoFile;
        return error == 0 ? ToSystemError(FileError::InUse) : error;
    }
    return error;
}

} // namespace

FileLock::~FileLock()
{
    Release();
}

FileResult FileLock::Acquire(const char* path, LockMode mode, uint32_t timeoutMs, std::string* owner) noexcept
{
    Release();
    FileHandle file = kNoFile;
    FileResult result = Guarded(
        [&]
        {
            if (owner != nullptr)
            {
                owner->clear();
            }
            Retrier retrier({kFirstPauseMs, kLongestPauseMs, timeoutMs});
            NativePath native;
            SystemError error = ToNativePath(path, native);
            if (error == 0)
            {
                error = retrier.Run(native, [&] { return TryAcquire(native, mode, file); });
            }
            if (error == 0 && mode == LockMode::Exclusive)
            {
                WriteOwner(file);
            }
            else if (error == 0)
            {
                sys::Resize(file, 0); // nobody has it exclusively: what the file says is out of date
            }
            else if (file != kNoFile && owner != nullptr)
            {
                *owner = ReadOwner(file);
            }
            return retrier.Result(error);
        });
    if (result.Ok())
    {
        m_handle = file;
        m_exclusive = mode == LockMode::Exclusive;
        return result;
    }
    if (file != kNoFile)
    {
        sys::Close(file);
    }
    result.error = result.error == FileError::InUse ? FileError::TimedOut : result.error;
    return result;
}

void FileLock::Release() noexcept
{
    if (!IsHeld())
    {
        return;
    }
    if (m_exclusive)
    {
        sys::Resize(m_handle, 0);
    }
    sys::Unlock(m_handle);
    sys::Close(m_handle);
    m_handle = kNone;
}

} // namespace tsypr
