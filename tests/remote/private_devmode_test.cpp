#include "remote/private_devmode.h"
#include "tests/remote/device_mode_builder.h"

#include <gtest/gtest.h>

namespace tsypr::test
{
namespace
{

TEST(PrivateBlock, LiesAtTheEndOfTheWholeDeviceMode)
{
    const struct
    {
        WORD size, extra;
        ptrdiff_t offset; // -1: no block
    } cases[] = {{220, 892, -1}, {1112, 0, -1}, {220, 893, 1}, {221, 1113, 222}, {65535, 65535, 2 * 65535 - 1112}};
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

TEST(PrivateBlock, TextsEndAtTheirLastPosition)
{
    DeviceMode dm(220, 893); // the block begins at byte 1
    PrivateDevMode& block = *GetPrivateDevMode(dm.Get());
    Fill(block.nupLayout, L'n');
    Fill(block.staple, L's');
    block.lockedSettings = 0x80000001;
    EXPECT_EQ(std::wstring(29, L'n'), Text(block.nupLayout));
    block.nupLayout.Write(L"abc");
    EXPECT_EQ(L"abc", Text(block.nupLayout));
    block.nupLayout.Write(std::wstring(40, L'x').c_str());
    EXPECT_EQ(std::wstring(29, L'x'), Text(block.nupLayout));
    EXPECT_EQ(std::wstring(29, L's'), Text(block.staple));
    EXPECT_EQ(0x80000001U, uint32_t{block.lockedSettings}); // read by value: the field is misaligned
}

} // namespace
} // namespace tsypr::test
