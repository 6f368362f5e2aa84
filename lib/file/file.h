// An open file.
#ifndef TESSARY_LIB_FILE_FILE_H
#define TESSARY_LIB_FILE_FILE_H

#include "lib/file/file_result.h"
#include "lib/file/retry_policy.h"

#include <cstddef>
#include <cstdint>

namespace tsypr
{

enum class FileAccess
{
    Read,
    Write,
    ReadWrite,
    Append // every write goes to the end, also when other processes append to the file
};

enum class FileCreation
{
    OpenExisting, // NotFound when it is missing
    OpenOrCreate,
    Truncate, // opened or created, then emptied; needs an access that writes
    CreateNew // AlreadyExists when it is there
};

// Others may read, write, rename and delete the file while it is open; children of this process do not inherit it. One
// object is used by one thread at a time. With nothing open every function answers InvalidArgument. Nothing throws.
class File
{
public:
    constexpr File() noexcept = default;
    ~File(); // closes; a failure then stays unnoticed, so who has written calls Sync or Close
    File(File&& other) noexcept;
    File& operator=(File&& other) noexcept;
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    // Closes what was open before, also when it fails. NotFound for a missing file or folder, NameTooLong, AccessDenied
    // (also writing to a read-only file, creating in a read-only folder), IsADirectory, DiskFull when no name can be
    // added to the folder, InUse when another process let nobody else in until the retries were used up.
    FileResult Open(const char* path, FileAccess access, FileCreation creation, const RetryPolicy& retry = {}) noexcept;

    // Reads at the position, which moves on, until the buffer is full or the file ends. `read` tells how much came,
    // also when it fails. A null buffer is allowed for length 0 only.
    FileResult Read(void* buffer, size_t length, size_t& read) noexcept;

    // Writes all of it at the position, which moves on. When it fails, DiskFull for instance, a part may have been
    // written. A null buffer is allowed for length 0 only.
    FileResult Write(const void* bytes, size_t length) noexcept;

    // Sets the position from the start of the file, also beyond its end.
    FileResult Seek(uint64_t offset) noexcept;

    FileResult GetSize(uint64_t& bytes) noexcept; // 0 when it fails

    // Cuts the file, or lengthens it with zeros. The position stays.
    FileResult Resize(uint64_t bytes) noexcept;

    // Waits until what was written is on the disk.
    FileResult Sync() noexcept;

    // Harmless when nothing is open. Closed afterwards also when it fails.
    FileResult Close() noexcept;

    bool IsOpen() const noexcept
    {
        return m_handle != kNone;
    }

private:
    static constexpr long long kNone = -1;
    long long m_handle = kNone; // a HANDLE or a file descriptor
};

} // namespace tsypr

#endif
