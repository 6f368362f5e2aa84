#ifndef TESSARY_SERVICE_PRIVATE_BLOCK_H
#define TESSARY_SERVICE_PRIVATE_BLOCK_H

#include <cstddef>
#include <cstdint>

#include <windows.h>

#include "service/profile.h"

namespace tsypr::service
{

// Watermark settings, the last 384 bytes of every device mode.
struct WatermarkBlock
{
    LOGFONTW font;
    std::int32_t pointSize; // tenths of a point
    COLORREF color;
    WCHAR text[128];
    std::uint8_t reserved[20];
    std::uint32_t placement; // 0 or 1
    std::uint32_t flag;      // 0 or 1
};

// The driver's own settings, the last 1112 bytes of a device mode. The layout is read by other components and stored
// in spool files; it has no padding, which the assertions below keep true.
struct PrivateBlock
{
    std::uint32_t signature;
    std::uint32_t compression;
    WCHAR printerName[256];
    std::uint32_t printTargetChoice;
    std::uint8_t isPrintAsImage;
    std::uint8_t isShowPreDlg;
    std::uint16_t reserved1;
    std::uint32_t featureBitmap;
    std::uint32_t reserved2;
    std::uint32_t pagesPerSheet;
    WCHAR nupLayout[30];
    WCHAR staple[30];
    WCHAR punch[30];
    std::uint32_t lockedSettings;
    std::uint32_t reserved3;
    WatermarkBlock watermark;
};

inline constexpr std::uint32_t kPrivateSignature = 0x78656D64; // "dmex"

static_assert(sizeof(DEVMODEW) == kPublicDevModeSize);
static_assert(sizeof(LOGFONTW) == 92);
static_assert(offsetof(WatermarkBlock, pointSize) == 92);
static_assert(offsetof(WatermarkBlock, color) == 96);
static_assert(offsetof(WatermarkBlock, text) == 100);
static_assert(offsetof(WatermarkBlock, reserved) == 356);
static_assert(offsetof(WatermarkBlock, placement) == 376);
static_assert(offsetof(WatermarkBlock, flag) == 380);
static_assert(sizeof(WatermarkBlock) == 384);
static_assert(offsetof(PrivateBlock, signature) == 0);
static_assert(offsetof(PrivateBlock, compression) == 4);
static_assert(offsetof(PrivateBlock, printerName) == 8);
static_assert(offsetof(PrivateBlock, printTargetChoice) == 520);
static_assert(offsetof(PrivateBlock, isPrintAsImage) == 524);
static_assert(offsetof(PrivateBlock, isShowPreDlg) == 525);
static_assert(offsetof(PrivateBlock, reserved1) == 526);
static_assert(offsetof(PrivateBlock, featureBitmap) == 528);
static_assert(offsetof(PrivateBlock, reserved2) == 532);
static_assert(offsetof(PrivateBlock, pagesPerSheet) == 536);
static_assert(offsetof(PrivateBlock, nupLayout) == 540);
static_assert(offsetof(PrivateBlock, staple) == 600);
static_assert(offsetof(PrivateBlock, punch) == 660);
static_assert(offsetof(PrivateBlock, lockedSettings) == 720);
static_assert(offsetof(PrivateBlock, reserved3) == 724);
static_assert(offsetof(PrivateBlock, watermark) == 728);
static_assert(sizeof(PrivateBlock) == kPrivateBlockSize);

} // namespace tsypr::service

#endif
