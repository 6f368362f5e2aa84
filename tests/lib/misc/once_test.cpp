#include "lib/misc/once.h"

#include "tests/lib/child_process.h"

#include <atomic>

namespace tsypr::test
{
namespace
{

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

} // namespace
} // namespace tsypr::test
