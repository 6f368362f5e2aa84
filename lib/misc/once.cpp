#include "lib/misc/once.h"

#include "lib/misc/futex.h"

namespace tsypr
{

bool OnceFlag::Begin() noexcept
{
    uint32_t state = m_state.load(std::memory_order_acquire);
    while (state != kDone)
    {
        if (state != kUntouched)
        {
            detail::FutexPrepare();
        }
        const uint32_t next = state == kUntouched ? kRunning : kAwaited;
        if (!m_state.compare_exchange_weak(state, next, std::memory_order_acquire))
        {
            continue;
        }
        if (state == kUntouched)
        {
            return true;
        }
        detail::FutexWait(m_state, kAwaited);
        state = m_state.load(std::memory_order_acquire);
    }
    return false;
}

void OnceFlag::End(bool done) noexcept
{
    if (m_state.exchange(done ? kDone : kUntouched, std::memory_order_release) == kAwaited)
    {
        detail::FutexWakeAll(m_state);
    }
}

} // namespace tsypr
