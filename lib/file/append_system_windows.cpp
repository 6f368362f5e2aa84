#include "lib/file/append_system.h"
#include "lib/file/system_call_windows.h"

namespace tsypr::sys
{
namespace
{

OVERLAPPED PlaceOfTurn() noexcept
{
    OVERLAPPED place = {};
    place.OffsetHigh = 0x4000'0001; // not where files are locked for other reasons
    return place;
}

} // namespace

SystemError OpenToAppend(const NativePath& path, bool shared, FileHandle& handle) noexcept
{
    if (shared)
    {
        return Open(path, Access::Append, Creation::OpenOrCreate, handle);
    }
    // Nobody else moves the end, and a write at the position needs not to look for it.
    uint64_t end = 0;
    SystemError error = Open(path, Access::Write, Creation::OpenOrCreate, handle);
    if (error == 0)
    {
        error = Size(handle, end);
        error = error == 0 ? Seek(handle, end) : error;
        if (error != 0)
        {
            Close(handle);
            handle = kNoFile;
        }
    }
    return error;
}

bool MayLeadTo(const NativePath& path, FileHandle handle) noexcept
{
    const UniqueHandle there = OpenHandle(path, FILE_READ_ATTRIBUTES, kShareAll, FILE_ATTRIBUTE_NORMAL);
    if (there == nullptr)
    {
        const DWORD error = GetLastError(); // access is denied to a file that goes away when it is closed
        return error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND && !IsDeleted(handle);
    }
    BY_HANDLE_FILE_INFORMATION open;
    BY_HANDLE_FILE_INFORMATION named;
    if (GetFileInformationByHandle(ToHandle(handle), &open) == FALSE ||
        GetFileInformationByHandle(there.get(), &named) == FALSE)
    {
        return true;
    }
    return open.dwVolumeSerialNumber == named.dwVolumeSerialNumber && open.nFileIndexHigh == named.nFileIndexHigh &&
           open.nFileIndexLow == named.nFileIndexLow;
}

bool IsDeleted(FileHandle handle) noexcept
{
    FILE_STANDARD_INFO info = {};
    return GetFileInformationByHandleEx(ToHandle(handle), FileStandardInfo, &info, sizeof(info)) != FALSE &&
           (info.DeletePending != FALSE || info.NumberOfLinks == 0);
}

SystemError RemoveUnused(const NativePath& path) noexcept
{
    // Shared with nobody; the file goes when this handle is closed.
    return Call(
        FileOperation::Delete,
        [&path]
        { return OpenHandle(path, DELETE, 0, FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT) != nullptr; });
}

AppendTurn::AppendTurn(FileHandle handle, Patience patience) noexcept : m_handle(handle)
{
    if (patience == Patience::None)
    {
        return;
    }
    constexpr ULONGLONG kLongMs = 5000;
    constexpr ULONGLONG kShortMs = 10;
    constexpr int kTriesWithoutPause = 50;
    // Who has the turn may stand still in a debugger: after that time a line goes out of turn.
    const ULONGLONG end = GetTickCount64() + (patience == Patience::Long ? kLongMs : kShortMs);
    for (int tries = 0;; ++tries)
    {
        OVERLAPPED place = PlaceOfTurn();
        constexpr DWORD kFlags = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
        m_locked = LockFileEx(ToHandle(m_handle), kFlags, 0, 1, 0, &place) != FALSE;
        if (m_locked || GetLastError() != ERROR_LOCK_VIOLATION || GetTickCount64() >= end)
        {
            return;
        }
        Sleep(tries < kTriesWithoutPause ? 0 : 1);
    }
}

AppendTurn::~AppendTurn()
{
    if (m_locked)
    {
        OVERLAPPED place = PlaceOfTurn();
        UnlockFileEx(ToHandle(m_handle), 0, 1, 0, &place);
    }
}

} // namespace tsypr::sys
