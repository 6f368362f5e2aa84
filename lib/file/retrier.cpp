#include "lib/file/retrier.h"

#include <algorithm>
#include <limits>
#include <thread>

namespace tsypr
{

Retrier::Retrier(const RetryPolicy& policy) noexcept : m_policy(policy), m_start(std::chrono::steady_clock::now()) {}

uint32_t Retrier::ElapsedMs() const noexcept
{
    using namespace std::chrono;
    const auto elapsed = duration_cast<milliseconds>(steady_clock::now() - m_start).count();
    return static_cast<uint32_t>(std::clamp<long long>(elapsed, 0, std::numeric_limits<uint32_t>::max()));
}

bool Retrier::Pause(SystemError error, uint32_t& pauseMs) noexcept
{
    const uint32_t elapsed = ElapsedMs();
    if (elapsed >= m_policy.totalMs)
    {
        return false;
    }
    ++m_retries;
    m_lastRetriedError = error;
    const uint32_t longest = std::max(m_policy.longestPauseMs, uint32_t{1});
    const uint32_t pause = std::clamp(pauseMs, uint32_t{1}, longest);
    std::this_thread::sleep_for(std::chrono::milliseconds(std::min(pause, m_policy.totalMs - elapsed)));
    pauseMs = pause > longest / 2 ? longest : pause * 2;
    return true;
}

FileResult Retrier::Result(SystemError error) const noexcept
{
    FileResult result = ToResult(error);
    result.retries = m_retries;
    result.lastRetriedError = m_lastRetriedError;
    result.elapsedMs = m_retries == 0 ? 0 : ElapsedMs();
    return result;
}

} // namespace tsypr
