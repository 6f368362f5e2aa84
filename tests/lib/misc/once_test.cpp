#include "lib/misc/once.h"

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <thread>

namespace tsypr::test
{
namespace
{

TEST(OnceTest, ManyThreadsOneRun)
{
    static constinit OnceFlag s_flag;
    int runs = 0; // written by one thread, read by all: only the flag orders that
    std::string result;
    std::atomic<int> right{0};
    std::vector<std::jthread> threads;
    for (int t = 0; t < 8; ++t)
    {
        threads.emplace_back(
            [&]
            {
                const bool done = CallOnce(s_flag,
                                           [&]
                                           {
                                               std::this_thread::sleep_for(std::chrono::milliseconds(20));
                                               ++runs;
                                               result = "made";
                                           });
                right += done && result == "made" ? 1 : 0;
            });
    }
    threads.clear(); // waits for them
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(right, 8);
    EXPECT_TRUE(s_flag.IsDone());
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

// Those that wait for an attempt that fails make one of their own, one after the other.
TEST(OnceTest, WaitersTakeOverAfterAFailure)
{
    OnceFlag flag;
    int attempts = 0;
    std::atomic<int> successes{0};
    std::vector<std::jthread> threads;
    for (int t = 0; t < 6; ++t)
    {
        threads.emplace_back(
            [&]
            {
                successes += CallOnce(flag,
                                      [&]
                                      {
                                          std::this_thread::sleep_for(std::chrono::milliseconds(5));
                                          return ++attempts == 4;
                                      })
                                 ? 1
                                 : 0;
            });
    }
    threads.clear();
    EXPECT_EQ(attempts, 4);
    EXPECT_EQ(successes, 3); // three attempts failed
}

} // namespace
} // namespace tsypr::test
