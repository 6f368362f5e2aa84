#include "lib/misc/process.h"

#include "lib/misc/lock_rank.h"

#include <windows.h>

#include <cstdio>

namespace tsypr
{

uint32_t CurrentProcessId() noexcept
{
    return GetCurrentProcessId();
}

uint32_t CurrentThreadId() noexcept
{
    return GetCurrentThreadId();
}

uintptr_t CurrentThreadToken() noexcept
{
    return GetCurrentThreadId();
}

void detail::ShowToDeveloper(const char* line) noexcept
{
    OutputDebugStringA(line);
    std::fputs(line, stderr);
}

} // namespace tsypr
