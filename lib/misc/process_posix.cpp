#include "lib/misc/process.h"

#include "lib/misc/lock_rank.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>

namespace tsypr
{

uint32_t CurrentProcessId() noexcept
{
    return static_cast<uint32_t>(getpid());
}

uint32_t CurrentThreadId() noexcept
{
    return static_cast<uint32_t>(syscall(SYS_gettid));
}

uintptr_t CurrentThreadToken() noexcept
{
    static thread_local const char s_token = 0;
    return reinterpret_cast<uintptr_t>(&s_token);
}

void detail::ShowToDeveloper(const char* line) noexcept
{
    std::fputs(line, stderr);
}

} // namespace tsypr
