// A file that is only ever appended to, one whole record in one write.
#ifndef TESSARY_LIB_FILE_APPEND_FILE_H
#define TESSARY_LIB_FILE_APPEND_FILE_H

#include <cstddef>

namespace tsypr
{

// Moves are not needed: the one user keeps it in place. All paths are UTF-8.
class AppendFile
{
public:
    constexpr AppendFile() noexcept = default;
    AppendFile(const AppendFile&) = delete;
    AppendFile& operator=(const AppendFile&) = delete;

    // Opens or creates the file for appending, others may read, append, rename or delete it meanwhile. A missing parent
    // folder is created, one level deep. Returns false, with nothing open, when that is not possible or `path` is null,
    // empty or ill-formed.
    bool Open(const char* path) noexcept;

    // Appends the bytes with one call to the system, so that they survive the end of this process. Returns whether all
    // of them were taken; false when nothing is open, `bytes` is null, or the disk is full, when a part of them may
    // have been taken.
    bool Append(const char* bytes, size_t length) noexcept;

    bool IsOpen() const noexcept
    {
        return m_handle != kNone;
    }

    // Harmless when nothing is open. There is no destructor that closes: a static instance must not run code at the
    // end of the process; its owner closes it.
    void Close() noexcept;

private:
    static constexpr long long kNone = -1;
    long long m_handle = kNone; // a HANDLE or a file descriptor
};

} // namespace tsypr

#endif
