// Times two pieces of code against each other, robustly on a machine that others use, too.
//
// Both run in short batches, turn about, so that a disturbance or a change of the clock rate meets both alike. A ratio
// is the median over many rounds. A batch that is longer than the time between two disturbances is tried several times
// in its round, and the shortest counts. Times and differences come from the shortest batches, since nothing makes code
// faster than it is.
#ifndef TESSARY_BENCH_COMPARE_H
#define TESSARY_BENCH_COMPARE_H

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <functional>
#include <limits>
#include <vector>

namespace tsypr::bench
{

struct Plan
{
    size_t rounds = 301;
    double batchSeconds = 0.0004;                // how long the slower one's batch lasts about
    size_t mostCalls = 1'000'000;                // in one batch
    size_t tries = 1;                            // batches of either in a round
    std::function<void()> betweenRounds = [] {}; // not timed
};

// For calls that take milliseconds.
inline Plan SlowCallPlan()
{
    Plan plan;
    plan.rounds = 101;
    plan.tries = 3;
    return plan;
}

struct Comparison
{
    double firstNs;      // shortest time of one call
    double secondNs;     // likewise
    double ratio;        // median of first / second
    double differenceNs; // first - second
};

inline double Median(std::vector<double> values) noexcept
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

inline double NowNs() noexcept
{
    LARGE_INTEGER ticks;
    LARGE_INTEGER perSecond;
    QueryPerformanceCounter(&ticks);
    QueryPerformanceFrequency(&perSecond);
    return static_cast<double>(ticks.QuadPart) * 1e9 / static_cast<double>(perSecond.QuadPart);
}

// Nanoseconds of one call, over a batch.
template <class Code>
double TimeBatch(Code& code, size_t calls)
{
    const double begin = NowNs();
    for (size_t i = 0; i < calls; ++i)
    {
        code();
        std::atomic_signal_fence(std::memory_order_seq_cst); // every call really happens
    }
    return (NowNs() - begin) / static_cast<double>(calls);
}

// How many calls make up a batch of the planned length.
template <class Code>
size_t CallsPerBatch(Code& code, const Plan& plan)
{
    size_t calls = 1;
    while (calls < plan.mostCalls && TimeBatch(code, calls) * static_cast<double>(calls) < plan.batchSeconds * 1e9)
    {
        calls = std::min(calls * 2, plan.mostCalls);
    }
    return calls;
}

template <class First, class Second>
Comparison Compare(First first, Second second, const Plan& plan = {})
{
    const size_t calls = std::min(CallsPerBatch(first, plan), CallsPerBatch(second, plan));
    std::vector<double> firsts;
    std::vector<double> seconds;
    std::vector<double> ratios;
    for (size_t round = 0; round < plan.rounds; ++round)
    {
        plan.betweenRounds();
        double firstNs = std::numeric_limits<double>::max();
        double secondNs = firstNs;
        for (size_t attempt = 0; attempt < plan.tries; ++attempt)
        {
            const bool turned = (round + attempt) % 2 != 0; // whoever comes second finds warmer caches
            const double early = turned ? TimeBatch(second, calls) : TimeBatch(first, calls);
            const double late = turned ? TimeBatch(first, calls) : TimeBatch(second, calls);
            firstNs = std::min(firstNs, turned ? late : early);
            secondNs = std::min(secondNs, turned ? early : late);
        }
        firsts.push_back(firstNs);
        seconds.push_back(secondNs);
        ratios.push_back(firsts.back() / seconds.back());
    }
    const double firstNs = std::ranges::min(firsts);
    const double secondNs = std::ranges::min(seconds);
    return {firstNs, secondNs, Median(ratios), firstNs - secondNs};
}

} // namespace tsypr::bench

#endif
