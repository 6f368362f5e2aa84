// A lock for short critical sections that needs no set-up and no clean-up, so that it may be a module's static state.
#ifndef TESSARY_LIB_MISC_EXCLUSIVE_LOCK_H
#define TESSARY_LIB_MISC_EXCLUSIVE_LOCK_H

#ifdef _WIN32
#include <windows.h>
#else
#include <mutex>
#endif

namespace tsypr
{

class ExclusiveLock
{
public:
    constexpr ExclusiveLock() noexcept = default;
    ExclusiveLock(const ExclusiveLock&) = delete;
    ExclusiveLock& operator=(const ExclusiveLock&) = delete;

#ifdef _WIN32
    void Acquire() noexcept
    {
        AcquireSRWLockExclusive(&m_lock);
    }
    void Release() noexcept
    {
        ReleaseSRWLockExclusive(&m_lock);
    }

private:
    SRWLOCK m_lock = SRWLOCK_INIT;
#else
    void Acquire() noexcept
    {
        m_lock.lock();
    }
    void Release() noexcept
    {
        m_lock.unlock();
    }

private:
    std::mutex m_lock;
#endif
};

} // namespace tsypr

#endif
