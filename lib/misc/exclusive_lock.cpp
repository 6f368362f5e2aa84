#include "lib/misc/exclusive_lock.h"

#include "lib/misc/clock.h"
#include "lib/misc/futex.h"

namespace tsypr
{

// A holder that runs on another processor is done sooner than a thread falls asleep and wakes up.
bool ExclusiveLock::Spin() noexcept
{
    constexpr int kRounds = 100;
    for (int round = 0; round < kRounds; ++round)
    {
        const uint32_t state = m_state.load(std::memory_order_relaxed);
        if (state == kFree && TakeFree())
        {
            return true;
        }
        if (state == kAwaited)
        {
            return false; // others sleep already
        }
        detail::CpuRelax();
    }
    return false;
}

// Negative: for ever.
bool ExclusiveLock::TakeWithin(int64_t microseconds) noexcept
{
    if (Spin())
    {
        return true;
    }
    detail::FutexPrepare();
    const Deadline deadline(microseconds);
    // Who comes here cannot know whether others sleep, too, and so takes the lock as awaited.
    while (m_state.exchange(kAwaited, std::memory_order_acquire) != kFree)
    {
        const int64_t remaining = deadline.RemainingMicroseconds();
        if (remaining == 0)
        {
            return false;
        }
        detail::FutexWait(m_state, kAwaited, remaining);
    }
    return true;
}

void ExclusiveLock::NoteWait(int64_t since) noexcept
{
    const auto waited = static_cast<uint64_t>(MonotonicMicroseconds() - since);
    Add(m_contended, 1);
    Add(m_totalWaitUs, waited);
    if (waited > m_longestWaitUs.load(std::memory_order_relaxed))
    {
        m_longestWaitUs.store(waited, std::memory_order_relaxed);
    }
}

void ExclusiveLock::AcquireSlowly() noexcept
{
    const int64_t begin = MonotonicMicroseconds();
    TakeWithin(detail::kForever);
    NoteWait(begin);
}

bool ExclusiveLock::AcquireSlowlyFor(uint32_t milliseconds) noexcept
{
    if (milliseconds == 0)
    {
        return false;
    }
    const int64_t begin = MonotonicMicroseconds();
    if (!TakeWithin(static_cast<int64_t>(milliseconds) * 1000))
    {
        return false;
    }
    NoteWait(begin);
    return true;
}

void ExclusiveLock::WakeOne() noexcept
{
    detail::FutexWakeOne(m_state);
}

LockStatistics ExclusiveLock::Statistics() const noexcept
{
    constexpr auto kRelaxed = std::memory_order_relaxed;
    return {m_acquisitions.load(kRelaxed),
            m_contended.load(kRelaxed),
            m_totalWaitUs.load(kRelaxed),
            m_longestWaitUs.load(kRelaxed)};
}

} // namespace tsypr
