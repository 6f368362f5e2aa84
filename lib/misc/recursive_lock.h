// A lock that the thread which holds it may take again.
#ifndef TESSARY_LIB_MISC_RECURSIVE_LOCK_H
#define TESSARY_LIB_MISC_RECURSIVE_LOCK_H

#include "lib/misc/exclusive_lock.h"
#include "lib/misc/process.h"

namespace tsypr
{

// Constant-initialised like ExclusiveLock, with the same forms. Every acquisition needs its release.
class RecursiveLock
{
public:
    constexpr RecursiveLock() noexcept = default;
    constexpr RecursiveLock(const char* name, int rank) noexcept : m_lock(name, rank) {}

    void Acquire() noexcept
    {
        if (!TakeAgain())
        {
            m_lock.Acquire();
            BecomeOwner();
        }
    }

    bool TryAcquire() noexcept
    {
        return TakeAgain() || (m_lock.TryAcquire() && BecomeOwner());
    }

    bool TryAcquireFor(uint32_t milliseconds) noexcept
    {
        return TakeAgain() || (m_lock.TryAcquireFor(milliseconds) && BecomeOwner());
    }

    // Without effect when the thread does not hold the lock.
    void Release() noexcept
    {
        if (Depth() != 0 && --m_depth == 0)
        {
            m_owner.store(0, std::memory_order_relaxed);
            m_lock.Release();
        }
    }

    // How many times the calling thread has taken the lock and not released it yet.
    uint32_t Depth() const noexcept
    {
        return m_owner.load(std::memory_order_relaxed) == CurrentThreadToken() ? m_depth : 0;
    }

    // Taking the lock again is not counted.
    LockStatistics Statistics() const noexcept
    {
        return m_lock.Statistics();
    }

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
    bool TakeAgain() noexcept
    {
        if (Depth() == 0)
        {
            return false;
        }
        ++m_depth;
        return true;
    }

    bool BecomeOwner() noexcept
    {
        m_owner.store(CurrentThreadToken(), std::memory_order_relaxed);
        m_depth = 1;
        return true;
    }

    ExclusiveLock m_lock;
    std::atomic<uintptr_t> m_owner{0}; // only its own thread ever finds itself here
    uint32_t m_depth = 0;              // changed by the owner only
};

} // namespace tsypr

#endif
