// One call to the system, with its faults and its result. For the files of this folder only.
#ifndef TESSARY_LIB_FILE_SYSTEM_CALL_WINDOWS_H
#define TESSARY_LIB_FILE_SYSTEM_CALL_WINDOWS_H

#include "lib/file/fault.h"
#include "lib/file/native_path.h"
#include "lib/file/system_file.h"

#include <windows.h>

#include <memory>

namespace tsypr::sys
{

inline HANDLE ToHandle(FileHandle handle) noexcept
{
    return reinterpret_cast<HANDLE>(static_cast<intptr_t>(handle));
}

inline constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

struct CloseSystemHandle
{
    void operator()(HANDLE handle) const noexcept
    {
        CloseHandle(handle);
    }
};
using UniqueHandle = std::unique_ptr<void, CloseSystemHandle>;

// Empty instead of INVALID_HANDLE_VALUE.
inline UniqueHandle OpenHandle(const NativePath& path, DWORD access, DWORD share, DWORD flags) noexcept
{
    const HANDLE handle = CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING, flags, nullptr);
    return UniqueHandle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

// Makes a call that tells whether it succeeded and sets the last error when it did not.
template <class Function>
SystemError Call(FileOperation operation, Function function) noexcept
{
    const SystemError error = InjectedFault(operation);
    if (error != 0)
    {
        return error;
    }
    return function() ? 0 : GetLastError();
}

} // namespace tsypr::sys

#endif
