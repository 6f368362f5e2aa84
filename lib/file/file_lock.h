// A lock between processes, kept in a file of its own.
#ifndef TESSARY_LIB_FILE_FILE_LOCK_H
#define TESSARY_LIB_FILE_FILE_LOCK_H

#include "lib/file/file_result.h"

#include <cstdint>
#include <string>

namespace tsypr
{

enum class LockMode
{
    Shared,   // with other shared holders
    Exclusive // alone
};

// Advisory: it keeps out only those who ask for it. The system releases it when its process ends however that happens;
// what a dead owner left in the file is then no hindrance. It also excludes other FileLock objects of this process.
// Not recursive; one object is used by one thread at a time.
class FileLock
{
public:
    constexpr FileLock() noexcept = default;
    ~FileLock(); // releases
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    // Creates the lock file when it is missing (its folder must be there) and waits for the lock, at most `timeoutMs`.
    // 0 asks once. FileError::TimedOut when others held it all the time; `owner`, if given, then tells who, as
    // "process 4312 (spoolsv.exe) on HOST since 2024-03-05 14:15:02Z", or is empty when that is not known: for shared
    // holders, and when the text could not be written. NotFound for a missing folder, AccessDenied when the file cannot
    // be created; in a read-only folder a lock file that is there can be shared. What was held before is released.
    FileResult Acquire(const char* path, LockMode mode, uint32_t timeoutMs, std::string* owner = nullptr) noexcept;

    // Harmless when nothing is held. The lock file stays, empty.
    void Release() noexcept;

    bool IsHeld() const noexcept
    {
        return m_handle != kNone;
    }

private:
    static constexpr long long kNone = -1;
    long long m_handle = kNone; // a HANDLE or a file descriptor
    bool m_exclusive = false;
};

} // namespace tsypr

#endif
