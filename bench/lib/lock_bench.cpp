#include "bench/compare.h"
#include "bench/lib/benches.h"
#include "lib/misc/recursive_lock.h"

#include <mutex>

namespace tsypr::bench
{
namespace
{

template <class Lock>
void TakeAndRelease(Lock& lock)
{
    lock.lock();
    lock.unlock();
}

// Ours with all that a release build has: the statistics.
template <class Ours, class Other>
void CompareLocks(Report& report, const char* name, double goal)
{
    static Ours s_ours;
    static Other s_other;
    const Comparison times = Compare([] { TakeAndRelease(s_ours); }, [] { TakeAndRelease(s_other); });
    AddRatio(report, name, times, goal, "ours", "std");
}

} // namespace

void MeasureLocks(Report& report)
{
    CompareLocks<ExclusiveLock, std::mutex>(report, "lock and unlock / std::mutex", 1.2);
    CompareLocks<RecursiveLock, std::recursive_mutex>(report, "lock and unlock / std::recursive_mutex", 1.2);
}

} // namespace tsypr::bench
