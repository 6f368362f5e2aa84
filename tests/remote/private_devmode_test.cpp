#include "remote/private_devmode.h"
#include "remote/shared_devmode.h"
#include "tests/remote/allocation_faults.h"
#include "tests/remote/device_mode_builder.h"

#include <gtest/gtest.h>

#include <array>
#include <barrier>
#include <thread>
#include <vector>

namespace tsypr::test
{
namespace
{

TEST(PrivateBlock, LiesAtTheEndOfTheWholeDeviceMode)
{
    const struct
    {
        WORD size;
        WORD extra;
        ptrdiff_t offset; // -1: no block
    } cases[] = {{220, 892, -1},
                 {220, 0, -1},
                 {1112, 0, -1},
                 {220, 893, 1},
                 {220, 1112, 220},
                 {221, 1113, 222},
                 {65535, 65535, 2 * 65535 - 1112}};
    for (const auto& one : cases)
    {
        DeviceMode dm(one.size, one.extra);
        EXPECT_EQ(size_t{one.size} + one.extra, DevModeTotalSize(dm.Get()));
        const auto* block = reinterpret_cast<const BYTE*>(PrivateDevModePlace(dm.Get()));
        EXPECT_EQ(one.offset, block == nullptr ? -1 : block - reinterpret_cast<const BYTE*>(dm.Get()));
        if (one.size > 80 && one.offset > 80) // else the block covers the size fields
        {
            EXPECT_EQ(reinterpret_cast<const PrivateDevMode*>(block), GetPrivateDevMode(dm.Get()));
            dm.Private().signature ^= 1;
        }
        EXPECT_TRUE(GetPrivateDevMode(dm.Get()) == nullptr || one.offset == 1);
    }
    EXPECT_EQ(nullptr, GetPrivateDevMode(static_cast<const DEVMODEW*>(nullptr)));
}

TEST(PrivateBlock, AtByteOneIsReadAndWritten)
{
    DeviceMode dm(220, 893);
    PrivateDevMode* block = GetPrivateDevMode(dm.Get());
    ASSERT_NE(nullptr, block);
    Fill(block->staple, L's');
    block->staple.Terminate();
    block->lockedSettings = 0x80000001;
    EXPECT_EQ(std::wstring(29, L's'), Text(block->staple));
    EXPECT_EQ(0x80000001U, uint32_t{block->lockedSettings}); // read by value: the field is misaligned
}

TEST(PrivateBlock, TextsEndAtTheirLastPosition)
{
    DeviceMode dm;
    PrivateDevMode& block = dm.Private();
    Fill(block.nupLayout, L'n');
    Fill(block.staple, L's');
    EXPECT_EQ(std::wstring(29, L'n'), Text(block.nupLayout));
    block.nupLayout.Write(L"abc");
    EXPECT_EQ(L"abc", Text(block.nupLayout));
    block.nupLayout.Write(std::wstring(40, L'x').c_str());
    EXPECT_EQ(std::wstring(29, L'x'), Text(block.nupLayout));
    EXPECT_EQ(std::wstring(29, L's'), Text(block.staple));
}

TEST(SharedDevMode, IsFreedOnceByTheLastOfManyThreads)
{
    constexpr int kRounds = 300;
    const DeviceMode dm = ClientDeviceMode();
    std::array<SharedDevMode, 4> slots;
    std::barrier<> barrier(slots.size() + 1);
    std::vector<std::thread> threads;
    const auto release = [&barrier](SharedDevMode* slot)
    {
        for (int i = 0; i < kRounds; ++i)
        {
            barrier.arrive_and_wait();
            slot->reset();
            barrier.arrive_and_wait();
        }
        barrier.arrive_and_wait();
    };
    int wrong = 0;
    for (SharedDevMode& slot : slots)
    {
        threads.emplace_back(release, &slot);
    }
    for (int i = 0; i < kRounds; ++i)
    {
        const long before = LiveAllocations();
        slots.fill(CopyToSharedDevMode(dm.Get()));
        wrong += slots[0].use_count() == 4 ? 0 : 1;
        barrier.arrive_and_wait();
        barrier.arrive_and_wait();
        wrong += i != 0 && LiveAllocations() != before ? 1 : 0; // at first the threads themselves allocate
    }
    barrier.arrive_and_wait();
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(0, wrong);
}

} // namespace
} // namespace tsypr::test
