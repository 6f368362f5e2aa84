// A new file on its way to taking another's place. For the files of this folder only.
#ifndef TESSARY_LIB_FILE_TEMPORARY_FILE_H
#define TESSARY_LIB_FILE_TEMPORARY_FILE_H

#include "lib/file/retrier.h"

#include <cstddef>

namespace tsypr
{

// Lies beside its target as "NAME.PID-N.tmp", so that it is on the same volume. Goes away with this object unless it
// was committed, and with the next one for the same target when this process dies.
class TemporaryFile
{
public:
    TemporaryFile(const NativePath& target, Retrier& retrier);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    // Removes what dead processes left, then creates the file. `model` and `sameAccess` as for sys::CreateMarked.
    SystemError Create(const NativePath& model, bool sameAccess);

    SystemError Write(const void* bytes, size_t length) noexcept;

    // Flushes the file to the disk and gives it the target's name.
    SystemError Commit(bool overwrite);

    FileHandle Handle() const noexcept
    {
        return m_handle;
    }

private:
    void RemoveLeftovers() const;

    Retrier& m_retrier;
    const NativePath m_target;
    const NativePath m_folder;
    const NativePath m_stem; // of the target's name, cut where a longer name would not be allowed
    NativePath m_path;
    FileHandle m_handle = kNoFile;
    bool m_committed = false;
};

// 0 when a file can take the place of what is at the path, if anything is: a file that may be written.
SystemError CheckReplaceable(const NativePath& path, bool& exists) noexcept;

} // namespace tsypr

#endif
