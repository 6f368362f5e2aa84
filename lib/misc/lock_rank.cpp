#include "lib/misc/lock_rank.h"

#include "lib/misc/process.h"
#include "lib/string/format.h"

#include <atomic>
#include <cstdint>

namespace tsypr
{
namespace
{

// A ranked lock that some thread holds. The fields behind `thread` matter only to that thread itself, so nothing is
// ordered here: the watch must not hide a race from a tool that looks for them.
struct Held
{
    std::atomic<uintptr_t> thread{0}; // 0: a free place
    std::atomic<const void*> lock{nullptr};
    std::atomic<const char*> name{nullptr};
    std::atomic<int> rank{0};
};

// What finds no place is not watched.
constinit Held g_held[256];
constinit std::atomic<LockRankHandler> g_handler{nullptr};

constexpr auto kRelaxed = std::memory_order_relaxed;

void ReportToDeveloper(const LockRankViolation& violation) noexcept
{
    char line[256];
    FormatFixed(line,
                sizeof(line),
                "lock rank violation: \"%s\" (rank %d) is taken while \"%s\" (rank %d) is held\n",
                violation.wantedName,
                violation.wantedRank,
                violation.heldName,
                violation.heldRank);
    detail::ShowToDeveloper(line);
}

} // namespace

LockRankHandler SetLockRankHandler(LockRankHandler handler) noexcept
{
    return g_handler.exchange(handler);
}

namespace detail
{

void CheckLockRank(const char* name, int rank) noexcept
{
    if (rank == 0)
    {
        return;
    }
    const uintptr_t self = CurrentThreadToken();
    const Held* highest = nullptr;
    for (const Held& held : g_held)
    {
        if (held.thread.load(kRelaxed) == self &&
            (highest == nullptr || held.rank.load(kRelaxed) > highest->rank.load(kRelaxed)))
        {
            highest = &held;
        }
    }
    if (highest != nullptr && highest->rank.load(kRelaxed) >= rank)
    {
        const LockRankHandler handler = g_handler.load();
        const LockRankViolation violation = {highest->name.load(kRelaxed), highest->rank.load(kRelaxed), name, rank};
        (handler != nullptr ? handler : ReportToDeveloper)(violation);
    }
}

void NoteLockHeld(const void* lock, const char* name, int rank) noexcept
{
    if (rank == 0)
    {
        return;
    }
    const uintptr_t self = CurrentThreadToken();
    for (Held& held : g_held)
    {
        uintptr_t free = 0;
        if (held.thread.load(kRelaxed) == 0 && held.thread.compare_exchange_strong(free, self, kRelaxed))
        {
            held.lock.store(lock, kRelaxed);
            held.name.store(name, kRelaxed);
            held.rank.store(rank, kRelaxed);
            return;
        }
    }
}

void NoteLockReleased(const void* lock) noexcept
{
    const uintptr_t self = CurrentThreadToken();
    for (Held& held : g_held)
    {
        if (held.thread.load(kRelaxed) == self && held.lock.load(kRelaxed) == lock)
        {
            held.thread.store(0, kRelaxed);
            return;
        }
    }
}

} // namespace detail

} // namespace tsypr
