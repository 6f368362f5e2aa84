// The picture on the watermark page: a blank page with the watermark drawn on it.
#ifndef TESSARY_WATERMARK_PREVIEW_H
#define TESSARY_WATERMARK_PREVIEW_H

#include "watermark/watermark_block.h"

#include <windows.h>

namespace tsypr
{

// Shows the preview of a block on a page that was just made, and remembers the size of its preview control. The control
// stays empty when no watermark is wanted or the picture cannot be made. Drawing may change the block's font.
void ShowFirstPreview(HWND page, WatermarkBlock& block) noexcept;

// The same whenever the block has changed.
void RenewPreview(HWND page, WatermarkBlock& block) noexcept;

// Deletes the preview that was shown last, which outlives its page.
void ReleasePreview() noexcept;

} // namespace tsypr

#endif
