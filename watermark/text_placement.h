// Where a watermark's text stands on its page: from the lower left to the upper right corner, centred if it fits.
#ifndef TESSARY_WATERMARK_TEXT_PLACEMENT_H
#define TESSARY_WATERMARK_TEXT_PLACEMENT_H

#include <windows.h>

#include <cstdint>

namespace tsypr
{

struct TextPlacement
{
    double angle;    // of the page's diagonal, in degrees
    LONG escapement; // the same in tenths of a degree, as fonts have it
    int x;           // reference point of the text, from the page's upper left corner
    int y;
    UINT alignment; // how the text lies to its reference point, as SetTextAlign takes it
    bool isExceed;  // the text is taken to be longer than the diagonal and begins in the corner
};

// For a page of `width` by `height` and a text of `textUnits` UTF-16 units in a font `fontHeight` high, in the same
// unit. Sizes that no page has give no error but a placement off the page.
TextPlacement PlaceText(int32_t width, int32_t height, int32_t fontHeight, uint32_t textUnits) noexcept;

} // namespace tsypr

#endif
