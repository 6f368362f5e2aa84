#include "lib/misc/futex.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <ctime>

namespace tsypr::detail
{
namespace
{

constexpr int64_t kMicrosecondsPerSecond = 1'000'000;

long Futex(const std::atomic<uint32_t>& word, int operation, uint32_t value, const timespec* timeout) noexcept
{
    return syscall(SYS_futex, &word, operation | FUTEX_PRIVATE_FLAG, value, timeout, nullptr, 0);
}

} // namespace

void FutexPrepare() noexcept {}

bool FutexWait(const std::atomic<uint32_t>& word, uint32_t expected, int64_t microseconds) noexcept
{
    if (microseconds < 0)
    {
        Futex(word, FUTEX_WAIT, expected, nullptr);
        return true;
    }
    const timespec timeout = {static_cast<time_t>(microseconds / kMicrosecondsPerSecond),
                              static_cast<long>(microseconds % kMicrosecondsPerSecond * 1000)};
    return Futex(word, FUTEX_WAIT, expected, &timeout) == 0 || errno != ETIMEDOUT;
}

void FutexWakeOne(const std::atomic<uint32_t>& word) noexcept
{
    Futex(word, FUTEX_WAKE, 1, nullptr);
}

void FutexWakeAll(const std::atomic<uint32_t>& word) noexcept
{
    Futex(word, FUTEX_WAKE, INT_MAX, nullptr);
}

} // namespace tsypr::detail
