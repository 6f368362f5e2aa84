#include "tests/remote/allocation_faults.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>

namespace tsypr::test
{
namespace
{

constexpr long kNever = -1;
constinit std::atomic<long> g_countdown{kNever};
constinit std::atomic<bool> g_happened{false};
constinit std::atomic<long> g_live{0};

bool Fails() noexcept
{
    const long countdown = g_countdown.load();
    if (countdown == kNever)
    {
        return false;
    }
    g_countdown = countdown - 1; // the one that fails leaves kNever
    g_happened = countdown == 0;
    return countdown == 0;
}

void* Counted(void* memory) noexcept
{
    g_live += memory != nullptr ? 1 : 0;
    return memory;
}

} // namespace

AllocationFault::AllocationFault(long n) noexcept
{
    g_happened = false;
    g_countdown = n;
}

AllocationFault::~AllocationFault()
{
    g_countdown = kNever;
}

bool AllocationFault::Happened() const noexcept
{
    return g_happened;
}

AllocationFaultPause::AllocationFaultPause() noexcept : m_countdown(g_countdown.exchange(kNever)) {}

AllocationFaultPause::~AllocationFaultPause()
{
    g_countdown = m_countdown;
}

long LiveAllocations() noexcept
{
    return g_live;
}

} // namespace tsypr::test

extern "C"
{
    decltype(std::malloc) __real_malloc, __wrap_malloc;
    decltype(std::calloc) __real_calloc, __wrap_calloc;
    decltype(std::free) __real_free, __wrap_free;

    void* __wrap_malloc(size_t size)
    {
        return tsypr::test::Fails() ? nullptr : tsypr::test::Counted(__real_malloc(size));
    }

    void* __wrap_calloc(size_t count, size_t size)
    {
        return tsypr::test::Fails() ? nullptr : tsypr::test::Counted(__real_calloc(count, size));
    }

    void __wrap_free(void* memory)
    {
        tsypr::test::g_live -= memory != nullptr ? 1 : 0;
        __real_free(memory);
    }
}
