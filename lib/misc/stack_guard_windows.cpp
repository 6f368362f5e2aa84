// The stack protector's guard value, in place of the compiler's support library.
//
// That library asks a cryptographic provider for the value, which at every attach of a DLL loads and frees three system
// libraries under the loader lock. Here it is mixed from what the system tells at once, as Windows' own libraries do
// it.
#include <windows.h>

#include <cstdint>

extern "C"
{
    // The names are those that compiled code refers to.
    extern uintptr_t __stack_chk_guard;       // NOLINT(bugprone-reserved-identifier)
    [[noreturn]] void __stack_chk_fail(void); // NOLINT(bugprone-reserved-identifier)
}

// In force until the constructor below has run.
uintptr_t __stack_chk_guard = 0x9E3779B97F4A7C00; // NOLINT(bugprone-reserved-identifier)

void __stack_chk_fail(void) // NOLINT(bugprone-reserved-identifier)
{
    __builtin_trap(); // the stack is damaged: nothing more may run
}

namespace
{

// Every bit of the input changes about half of the output's.
uint64_t Mix(uint64_t value) noexcept
{
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EB;
    return value ^ (value >> 31);
}

// Not protected itself: the guard changes while it runs.
__attribute__((constructor, no_stack_protector)) void SetGuard() noexcept
{
    FILETIME time;
    LARGE_INTEGER ticks;
    GetSystemTimePreciseAsFileTime(&time);
    QueryPerformanceCounter(&ticks);
    uint64_t value = Mix(reinterpret_cast<uintptr_t>(&time)); // where the stack lies
    value = Mix(value ^ reinterpret_cast<uintptr_t>(&__stack_chk_guard));
    value = Mix(value ^ (static_cast<uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime));
    value = Mix(value ^ static_cast<uint64_t>(ticks.QuadPart));
    value = Mix(value ^ (static_cast<uint64_t>(GetCurrentProcessId()) << 32 | GetCurrentThreadId()));
    __stack_chk_guard = value & ~uint64_t{0xFF}; // a zero byte, which no runaway text copy can write
}

} // namespace
