// One call to the system, with its faults and its result. For the files of this folder only.
#ifndef TESSARY_LIB_FILE_SYSTEM_CALL_POSIX_H
#define TESSARY_LIB_FILE_SYSTEM_CALL_POSIX_H

#include "lib/file/fault.h"
#include "lib/file/native_path.h"

#include <cerrno>

namespace tsypr::sys
{

inline SystemError LastError() noexcept
{
    return static_cast<SystemError>(errno);
}

// Makes a call that returns a negative number and sets errno when it fails, until no signal interrupts it.
template <class Function>
SystemError Call(FileOperation operation, Function function) noexcept
{
    for (;;)
    {
        SystemError error = InjectedFault(operation);
        if (error == 0)
        {
            error = function() < 0 ? LastError() : 0;
        }
        if (error != EINTR)
        {
            return error;
        }
    }
}

} // namespace tsypr::sys

#endif
