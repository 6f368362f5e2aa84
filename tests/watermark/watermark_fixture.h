// What the watermark's tests work with.
#ifndef TESSARY_TESTS_WATERMARK_WATERMARK_FIXTURE_H
#define TESSARY_TESTS_WATERMARK_WATERMARK_FIXTURE_H

#include "tests/watermark/system_calls.h"
#include "watermark/watermark_block.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tsypr::test
{

inline WatermarkBlock Block(const std::wstring& text, LONG height = -48, COLORREF color = RGB(255, 0, 0))
{
    WatermarkBlock block = {};
    block.font.lfHeight = height;
    block.font.lfWeight = FW_BOLD;
    wcscpy(block.font.lfFaceName, L"Times New Roman");
    block.color = color;
    text.copy(block.text, kWatermarkTextChars);
    return block;
}

// A bitmap's pixels, upper row first.
struct Pixels
{
    explicit Pixels(HBITMAP bitmap)
    {
        BITMAP picture = {};
        GetObjectW(bitmap, sizeof(picture), &picture);
        width = picture.bmWidth;
        height = picture.bmHeight;
        values.resize(static_cast<size_t>(width) * static_cast<size_t>(height));
        BITMAPINFO info = {};
        info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        HDC dc = GetDC(nullptr);
        EXPECT_EQ(height, GetDIBits(dc, bitmap, 0, static_cast<UINT>(height), values.data(), &info, DIB_RGB_COLORS));
        ReleaseDC(nullptr, dc);
    }

    int width;
    int height;
    std::vector<uint32_t> values; // 0x00RRGGBB
};

} // namespace tsypr::test

#endif
