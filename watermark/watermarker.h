// Draws the watermark text diagonally across the picture of a page.
#ifndef TESSARY_WATERMARK_WATERMARKER_H
#define TESSARY_WATERMARK_WATERMARKER_H

#include "watermark/watermark_block.h"

#include <windows.h>

namespace tsypr::Watermarker
{

// Whether a block asks for a watermark: an empty text and, in any letter case, "No Watermark" do not.
bool IsWanted(const WatermarkBlock& block) noexcept;

// A new 24-bit bitmap of the source's size that shows the source with the watermark drawn on it; black when drawing
// failed, null when it could not be made. The caller owns it. `owner` is the window that will show it.
// When no watermark is wanted the result is null and `source` stays the caller's; else `source` is deleted, whatever
// the result. Changes the block as DrawWatermarkOnBMP does.
HBITMAP CreateBMPPreview(HWND owner, HBITMAP source, WatermarkBlock& block) noexcept;

// Draws into the bitmap that is selected into `dc`, half as large as the block's font says. `area` is the whole bitmap:
// left and top are 0. Returns whether the text was drawn. The block's font gets the angle of the text, and an odd
// height loses one unit toward zero.
bool DrawWatermarkOnBMP(HDC dc, const RECT& area, WatermarkBlock& block) noexcept;

} // namespace tsypr::Watermarker

#endif
