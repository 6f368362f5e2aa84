// A file that is only ever appended to, one whole record in one write.
#ifndef TESSARY_LIB_FILE_APPEND_FILE_H
#define TESSARY_LIB_FILE_APPEND_FILE_H

#include <cstddef>
#include <cstdint>

namespace tsypr
{

// Whether other processes append to the same file.
enum class AppendMode
{
    Shared, // they may: records never overwrite each other
    Own     // nobody else writes to it, which makes writing much faster on Windows
};

// All paths are UTF-8.
class AppendFile
{
public:
    constexpr AppendFile() noexcept = default;
    AppendFile(const AppendFile&) = delete;
    AppendFile& operator=(const AppendFile&) = delete;

    // Opens or creates the file for appending, others may read, append, rename or delete it meanwhile. A missing parent
    // folder is created, one level deep. Returns false, with nothing open, when that is not possible or `path` is null,
    // empty or ill-formed. RemoveUnusedFile leaves an open file alone.
    bool Open(const char* path, AppendMode mode = AppendMode::Shared) noexcept;

    // Appends the bytes with one call to the system, so that they survive the end of this process. Returns whether all
    // of them were taken; false when nothing is open, `bytes` is null, or the disk is full, when a part of them may
    // have been taken. `written`, if given, tells how many were.
    bool Append(const char* bytes, size_t length, size_t* written = nullptr) noexcept;

    // The same for the last thread of a process: it does not wait for a turn that a thread which is gone may have taken
    // along.
    bool AppendImpatiently(const char* bytes, size_t length) noexcept;

    bool IsOpen() const noexcept
    {
        return m_handle != kNone;
    }

    // The file's size in bytes; 0 when nothing is open or the system does not tell.
    uint64_t Size() const noexcept;

    // Whether the path still leads to the open file: it may have been renamed or deleted, and another one be there in
    // its place. True as well when that cannot be told.
    bool IsStillAt(const char* path) const noexcept;

    // Whether the open file has been deleted, so that what is appended is gone with it.
    bool IsDeleted() const noexcept;

    // Closes what is open and takes over what the other one has open.
    void TakeFrom(AppendFile& other) noexcept;

    // Harmless when nothing is open. There is no destructor that closes: a static instance must not run code at the
    // end of the process; its owner closes it.
    void Close() noexcept;

private:
    static constexpr long long kNone = -1;
    long long m_handle = kNone; // a HANDLE or a file descriptor
    bool m_shared = false;
};

// Deletes the file unless any process has it open as an AppendFile, or on Windows in any way. Returns whether it did.
bool RemoveUnusedFile(const char* path) noexcept;

} // namespace tsypr

#endif
