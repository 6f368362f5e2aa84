#include "lib/misc/process.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace tsypr
{

#ifdef _WIN32
uint32_t CurrentProcessId() noexcept
{
    return GetCurrentProcessId();
}

uint32_t CurrentThreadId() noexcept
{
    return GetCurrentThreadId();
}
#else
uint32_t CurrentProcessId() noexcept
{
    return static_cast<uint32_t>(getpid());
}

uint32_t CurrentThreadId() noexcept
{
    return static_cast<uint32_t>(syscall(SYS_gettid));
}
#endif

} // namespace tsypr
