// A lock for short critical sections that needs no set-up and no clean-up, so that it may be a module's static state.
//
// One thread holds it at a time. It is not recursive (see recursive_lock.h) and not fair: whoever asks first need not
// get it first. Waiting threads sleep. docs/locks.md tells how to use it.
#ifndef TESSARY_LIB_MISC_EXCLUSIVE_LOCK_H
#define TESSARY_LIB_MISC_EXCLUSIVE_LOCK_H

#include "lib/misc/lock_rank.h"

#include <atomic>
#include <cstdint>

namespace tsypr
{

// What threads had to wait for a lock. Failed tries are not counted.
struct LockStatistics
{
    uint64_t acquisitions;
    uint64_t contended;     // those of them that found the lock held
    uint64_t totalWaitUs;   // what these waited, together
    uint64_t longestWaitUs; // and the longest of them
};

class ExclusiveLock
{
public:
    constexpr ExclusiveLock() noexcept = default;

    // `name` is for messages and must stay valid; `rank` as lock_rank.h explains.
    constexpr ExclusiveLock(const char* name, int rank) noexcept : m_rank(rank), m_name(name == nullptr ? "" : name) {}

    ExclusiveLock(const ExclusiveLock&) = delete;
    ExclusiveLock& operator=(const ExclusiveLock&) = delete;

    // Waits until the lock is ours. A thread that holds it already waits for ever.
    void Acquire() noexcept
    {
        if constexpr (kLockRanksWatched)
        {
            detail::CheckLockRank(m_name, m_rank);
        }
        if (!TakeFree())
        {
            AcquireSlowly();
        }
        NoteTaken();
    }

    // Takes the lock if it is free at this moment. Tries are no violation of the ranks.
    bool TryAcquire() noexcept
    {
        if (!TakeFree())
        {
            return false;
        }
        NoteTaken();
        return true;
    }

    // Waits for the lock at most that long; 0 is a single try.
    bool TryAcquireFor(uint32_t milliseconds) noexcept
    {
        if (!TakeFree() && !AcquireSlowlyFor(milliseconds))
        {
            return false;
        }
        NoteTaken();
        return true;
    }

    // By the thread that holds it, and by no other.
    void Release() noexcept
    {
        if constexpr (kLockRanksWatched)
        {
            detail::NoteLockReleased(this);
        }
        if (m_state.exchange(kFree, std::memory_order_release) == kAwaited)
        {
            WakeOne();
        }
    }

    // Whether any thread holds the lock at this moment.
    bool IsHeld() const noexcept
    {
        return m_state.load(std::memory_order_relaxed) != kFree;
    }

    // May be asked at any time; the four numbers need not be of the same moment.
    LockStatistics Statistics() const noexcept;

    const char* Name() const noexcept
    {
        return m_name;
    }

    // For std::unique_lock and its like.
    void lock() noexcept
    {
        Acquire();
    }
    bool try_lock() noexcept
    {
        return TryAcquire();
    }
    void unlock() noexcept
    {
        Release();
    }

private:
    static constexpr uint32_t kFree = 0;
    static constexpr uint32_t kHeld = 1;
    static constexpr uint32_t kAwaited = 2; // held, and others may sleep until it is released

    bool TakeFree() noexcept
    {
        uint32_t expected = kFree;
        return m_state.compare_exchange_strong(expected, kHeld, std::memory_order_acquire, std::memory_order_relaxed);
    }

    // The counters change under the lock only: loading and storing is enough, and costs next to nothing.
    static void Add(std::atomic<uint64_t>& counter, uint64_t more) noexcept
    {
        counter.store(counter.load(std::memory_order_relaxed) + more, std::memory_order_relaxed);
    }

    void NoteTaken() noexcept
    {
        Add(m_acquisitions, 1);
        if constexpr (kLockRanksWatched)
        {
            detail::NoteLockHeld(this, m_name, m_rank);
        }
    }

    void AcquireSlowly() noexcept;
    bool AcquireSlowlyFor(uint32_t milliseconds) noexcept;
    bool TakeWithin(int64_t microseconds) noexcept;
    bool Spin() noexcept;
    void NoteWait(int64_t since) noexcept;
    void WakeOne() noexcept;

    std::atomic<uint32_t> m_state{kFree};
    int m_rank = 0;
    const char* m_name = "";
    std::atomic<uint64_t> m_acquisitions{0};
    std::atomic<uint64_t> m_contended{0};
    std::atomic<uint64_t> m_totalWaitUs{0};
    std::atomic<uint64_t> m_longestWaitUs{0};
};

// Holds a lock of either kind to the end of its scope.
template <class Lock>
class ScopedLock
{
public:
    explicit ScopedLock(Lock& lock) noexcept : m_lock(lock)
    {
        m_lock.Acquire();
    }
    ~ScopedLock()
    {
        m_lock.Release();
    }
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;

private:
    Lock& m_lock;
};

} // namespace tsypr

#endif
