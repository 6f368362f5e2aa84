#include "lib/misc/futex.h"

#include <windows.h>

namespace tsypr::detail
{
namespace
{

using WaitFunction = BOOL(WINAPI*)(volatile VOID*, PVOID, SIZE_T, DWORD);
using WakeFunction = void(WINAPI*)(PVOID);

// Looked up when a thread has to wait for the first time: as an import they would bring one more library into every
// process that loads ours.
struct Functions
{
    std::atomic<WaitFunction> wait{nullptr};
    std::atomic<WakeFunction> wakeOne{nullptr};
    std::atomic<WakeFunction> wakeAll{nullptr};
};

constinit Functions g_functions;

template <class Function>
Function Find(std::atomic<Function>& known, const char* name) noexcept
{
    Function function = known.load(std::memory_order_relaxed);
    if (function != nullptr)
    {
        return function;
    }
    const HMODULE library = GetModuleHandleW(L"kernelbase.dll"); // never unloaded
    if (library != nullptr)
    {
        function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
        known.store(function, std::memory_order_relaxed);
    }
    return function;
}

void Wake(std::atomic<WakeFunction>& known, const char* name, const std::atomic<uint32_t>& word) noexcept
{
    const WakeFunction wake = Find(known, name);
    if (wake != nullptr)
    {
        wake(const_cast<std::atomic<uint32_t>*>(&word)); // only the address counts
    }
}

} // namespace

void FutexPrepare() noexcept
{
    Find(g_functions.wakeOne, "WakeByAddressSingle");
    Find(g_functions.wakeAll, "WakeByAddressAll");
    Find(g_functions.wait, "WaitOnAddress");
}

bool FutexWait(const std::atomic<uint32_t>& word, uint32_t expected, int64_t microseconds) noexcept
{
    constexpr int64_t kLongestMs = 0x7FFFFFFF;
    const int64_t wholeMs = microseconds / 1000 + (microseconds % 1000 != 0 ? 1 : 0);
    const DWORD milliseconds =
        microseconds < 0 ? INFINITE : static_cast<DWORD>(wholeMs < kLongestMs ? wholeMs : kLongestMs);
    const WaitFunction wait = Find(g_functions.wait, "WaitOnAddress");
    if (wait == nullptr)
    {
        Sleep(milliseconds == 0 ? 0 : 1); // the callers look again
        return microseconds < 0 || microseconds > 1000;
    }
    auto* address = const_cast<std::atomic<uint32_t>*>(&word);
    return wait(address, &expected, sizeof(expected), milliseconds) != FALSE || GetLastError() != ERROR_TIMEOUT;
}

void FutexWakeOne(const std::atomic<uint32_t>& word) noexcept
{
    Wake(g_functions.wakeOne, "WakeByAddressSingle", word);
}

void FutexWakeAll(const std::atomic<uint32_t>& word) noexcept
{
    Wake(g_functions.wakeAll, "WakeByAddressAll", word);
}

} // namespace tsypr::detail
