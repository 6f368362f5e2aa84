#include "lib/misc/clock.h"
#include "lib/misc/once.h"
#include "lib/misc/recursive_lock.h"
#include "tests/lib/child_process.h"

#include <future>
#include <mutex>

namespace tsypr::test
{
namespace
{

using namespace std::chrono_literals;

template <class Lock>
constinit Lock g_lock; // both kinds may be static state

template <class Lock>
class LockTest : public testing::Test
{
protected:
    Lock& m_lock = g_lock<Lock>;
    LockStatistics m_before = m_lock.Statistics();
};

using LockTypes = testing::Types<ExclusiveLock, RecursiveLock>;
TYPED_TEST_SUITE(LockTest, LockTypes, );

// What another thread gets.
template <class Question>
auto ElsewhereSays(Question question)
{
    return std::async(std::launch::async, question).get();
}

TYPED_TEST(LockTest, EveryFormKeepsTheOthersOut)
{
    constexpr int kThreads = 4;
    constexpr int kRounds = 5000;
    TypeParam& lock = this->m_lock;
    int64_t counter = 0; // nothing but the lock protects it
    const auto count = [&lock, &counter](int)
    {
        for (int i = 0; i < kRounds; ++i)
        {
            {
                const ScopedLock scope(lock);
                ++counter;
            }
            {
                const std::unique_lock scope(lock);
                ++counter;
            }
            while (!lock.TryAcquireFor(1))
            {
            }
            ++counter;
            lock.Release();
            while (!lock.TryAcquire())
            {
                std::this_thread::yield();
            }
            ++counter;
            lock.Release();
        }
    };
    InThreads(kThreads, count);
    EXPECT_EQ(counter, int64_t{4} * kThreads * kRounds);
    const LockStatistics after = lock.Statistics();
    EXPECT_EQ(after.acquisitions - this->m_before.acquisitions, static_cast<uint64_t>(counter));
    EXPECT_LE(after.contended, after.acquisitions);
    EXPECT_LE(after.longestWaitUs, after.totalWaitUs);
}

TYPED_TEST(LockTest, TimedFormsWaitAsLongAsTheyShould)
{
    TypeParam& lock = this->m_lock;
    ASSERT_TRUE(lock.TryAcquire());
    EXPECT_FALSE(ElsewhereSays([&lock] { return lock.TryAcquire(); }));
    EXPECT_FALSE(ElsewhereSays([&lock] { return lock.TryAcquireFor(0); }));
    const int64_t begin = MonotonicMicroseconds();
    EXPECT_FALSE(ElsewhereSays([&lock] { return lock.TryAcquireFor(30); }));
    EXPECT_GE(MonotonicMicroseconds() - begin, 29'000);
    EXPECT_EQ(lock.Statistics().acquisitions - this->m_before.acquisitions, 1U); // what timed out does not count

    bool bothWaited = false; // where the processors are busy, a thread may come when the lock is free again
    for (int attempt = 0; attempt < 20 && !bothWaited; ++attempt)
    {
        const LockStatistics before = lock.Statistics();
        const auto waiting = [&lock](auto take)
        {
            return std::async(std::launch::async,
                              [&lock, take]
                              {
                                  take();
                                  lock.Release();
                              });
        };
        auto patient = waiting([&lock] { EXPECT_TRUE(lock.TryAcquireFor(60'000)); });
        auto endless = waiting([&lock] { lock.Acquire(); });
        std::this_thread::sleep_for(30ms);
        lock.Release();
        patient.get();
        endless.get();
        const LockStatistics after = lock.Statistics();
        EXPECT_EQ(after.acquisitions - before.acquisitions, 2U);
        bothWaited = after.contended - before.contended == 2 && after.totalWaitUs - before.totalWaitUs >= 20'000 &&
                     after.longestWaitUs >= 10'000;
        lock.Acquire();
    }
    lock.Release();
    EXPECT_TRUE(bothWaited);
    EXPECT_LT(MonotonicMicroseconds() - begin, 30'000'000); // woken, not timed out
}

TEST(RecursiveLockTest, TheHolderMayComeAgain)
{
    RecursiveLock lock;
    const auto freeForOthers = [&lock]
    {
        return ElsewhereSays(
            [&lock]
            {
                EXPECT_EQ(lock.Depth(), 0U);
                lock.Release(); // not theirs
                const bool taken = lock.TryAcquire();
                lock.Release();
                return taken;
            });
    };
    lock.Acquire();
    EXPECT_TRUE(lock.TryAcquire());
    EXPECT_TRUE(lock.TryAcquireFor(0));
    for (uint32_t depth = 3; depth != 0; --depth)
    {
        EXPECT_EQ(lock.Depth(), depth);
        EXPECT_FALSE(freeForOthers());
        lock.Release();
    }
    EXPECT_TRUE(freeForOthers());
    lock.Release();
    EXPECT_EQ(lock.Depth(), 0U);
    EXPECT_EQ(lock.Statistics().acquisitions, 2U);
}

std::vector<std::string>* g_violations;

void NoteViolation(const LockRankViolation& violation) noexcept
{
    g_violations->push_back(std::string(violation.wantedName) + std::to_string(violation.wantedRank) + " under " +
                            violation.heldName + std::to_string(violation.heldRank));
}

// Steps: a letter acquires that lock (a to d, ranks 10, 20, 20, none), "?" in front makes it a try, "-" releases it.
std::vector<std::string> ViolationsOf(std::string_view steps)
{
    static constinit ExclusiveLock s_locks[] = {{"a", 10}, {"b", 20}, {"c", 20}, {}};
    std::vector<std::string> violations;
    g_violations = &violations;
    const LockRankHandler before = SetLockRankHandler(NoteViolation);
    char how = ' ';
    for (const char step : steps)
    {
        if (step < 'a')
        {
            how = step;
            continue;
        }
        ExclusiveLock& lock = s_locks[step - 'a'];
        if (how == '-')
        {
            lock.Release();
        }
        else if (how != '?')
        {
            lock.Acquire();
        }
        else if (!lock.TryAcquire())
        {
            ADD_FAILURE() << "a try failed in " << steps;
        }
        how = ' ';
    }
    EXPECT_EQ(SetLockRankHandler(before), NoteViolation);
    return violations;
}

TEST(LockRankTest, ViolationsAreReportedWithBothNames)
{
    struct Case
    {
        const char* steps;
        std::vector<std::string> violations;
    };
    const Case cases[] = {
        {"ab-b-a", {}},
        {"ab-a-b", {}}, // released in any order
        {"ba-a-b", {"a10 under b20"}},
        {"bc-c-b", {"c20 under b20"}},
        {"b?a-a-b", {}},                // a try cannot lead into a deadlock,
        {"?ba-a-b", {"a10 under b20"}}, // but what it took counts
        {"b-ba-a", {}},
        {"?c?b-cda-a-d-b", {"a10 under b20"}},
        {"bda-b-d-a", {"a10 under b20"}},
        {"db-ba-a-d", {}},
    };
    for (const Case& example : cases)
    {
        EXPECT_EQ(ViolationsOf(example.steps), kLockRanksWatched ? example.violations : std::vector<std::string>{})
            << example.steps;
    }
}

TEST(LockRankTest, OtherThreadsDoNotCountAndTheDefaultGoesOn)
{
    ExclusiveLock high("preferences", 20);
    ExclusiveLock low("log", 10);
    const auto take = [&low] { const ScopedLock inner(low); };
    const ScopedLock scope(high);
    testing::internal::CaptureStderr();
    ElsewhereSays(take);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    testing::internal::CaptureStderr();
    take();
    const std::string text = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(kLockRanksWatched ? text.starts_with("lock rank violation: \"log\" (rank 10) is taken while "
                                                     "\"preferences\" (rank 20) is held")
                                  : text.empty())
        << text;
    RecursiveLock again("again", 30);
    const ScopedLock first(again);
    const ScopedLock second(again); // no violation: nothing would wait
}

TEST(OnceTest, WhatFailsIsTriedAgain)
{
    OnceFlag flag;
    EXPECT_FALSE(CallOnce(flag, [] { return false; }));
    EXPECT_THROW(CallOnce(flag, [] { throw std::runtime_error("no"); }), std::runtime_error);
    EXPECT_FALSE(flag.IsDone());
    EXPECT_TRUE(CallOnce(flag, [] { return true; }));
    EXPECT_TRUE(CallOnce(flag, [] { return false; })); // no longer asked
}

// One runs it while the others wait. After a failure those that wait make attempts of their own, one after the other.
TEST(OnceTest, ManyThreadsOneSuccess)
{
    constexpr int kThreads = 6;
    for (const int successful : {1, 4})
    {
        OnceFlag flag;
        int attempts = 0; // only the flag orders what the threads do with it
        std::atomic<int> right{0};
        InThreads(kThreads,
                  [&](int)
                  {
                      const bool done = CallOnce(flag,
                                                 [&]
                                                 {
                                                     std::this_thread::sleep_for(std::chrono::milliseconds(5));
                                                     return ++attempts == successful;
                                                 });
                      right += done && attempts == successful ? 1 : 0;
                  });
        EXPECT_EQ(attempts, successful);
        EXPECT_EQ(right, kThreads - successful + 1);
        EXPECT_TRUE(flag.IsDone());
    }
}

TEST(ClockTest, DeadlinesCountDown)
{
    const Deadline never(-1);
    const Deadline now(0);
    const Deadline soon(20'000);
    const Deadline farAway(INT64_MAX);
    EXPECT_EQ(never.RemainingMicroseconds(), -1);
    EXPECT_FALSE(never.Passed());
    EXPECT_TRUE(now.Passed());
    EXPECT_GT(farAway.RemainingMicroseconds(), INT64_MAX / 2);
    const int64_t begin = MonotonicMicroseconds();
    for (int64_t last = 20'000; !soon.Passed();)
    {
        const int64_t remaining = soon.RemainingMicroseconds();
        ASSERT_LE(remaining, last);
        last = remaining;
    }
    EXPECT_GE(MonotonicMicroseconds() - begin, 19'900);
}

} // namespace
} // namespace tsypr::test
