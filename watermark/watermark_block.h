// The watermark settings as they travel at the end of every device mode.
#ifndef TESSARY_WATERMARK_WATERMARK_BLOCK_H
#define TESSARY_WATERMARK_WATERMARK_BLOCK_H

#include "remote/private_devmode.h"

#include <windows.h>

#include <cstddef>
#include <cstring>

namespace tsypr
{

inline constexpr size_t kWatermarkTextChars = 128; // terminator included
inline constexpr wchar_t kNoWatermark[] = L"No Watermark";

struct WatermarkBlock
{
    LOGFONTW font;
    int32_t pointSize; // in tenths of a point, as the font dialog reports it
    COLORREF color;
    wchar_t text[kWatermarkTextChars];
    uint8_t reserved[20];
    uint32_t placement; // 0: in front of the page content, 1: behind it
    uint32_t flag;      // 1: on the first page only
};

static_assert(sizeof(WatermarkBlock) == kWatermarkBytes);
static_assert(offsetof(WatermarkBlock, pointSize) == 92);
static_assert(offsetof(WatermarkBlock, color) == 96);
static_assert(offsetof(WatermarkBlock, text) == 100);
static_assert(offsetof(WatermarkBlock, placement) == 376);
static_assert(offsetof(WatermarkBlock, flag) == 380);

// The text as readers may use it: one without terminator counts as its first 127 characters.
inline FixedText<kWatermarkTextChars> WatermarkText(const WatermarkBlock& block) noexcept
{
    FixedText<kWatermarkTextChars> copy;
    std::memcpy(copy.text, block.text, sizeof(copy.text));
    copy.text[kWatermarkTextChars - 1] = L'\0';
    return copy;
}

} // namespace tsypr

#endif
