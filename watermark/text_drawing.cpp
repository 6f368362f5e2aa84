#include "watermark/watermarker.h"

#include "module/log.h"
#include "watermark/gdi_owners.h"
#include "watermark/text_placement.h"

#include <cstdlib>

namespace tsypr::Watermarker
{
namespace
{

constexpr char kFunction[] = "Watermarker::DrawWatermarkOnBMP";

// Halves the font's height for as long as it lives. Doubling it again makes an odd height even: intended, as the
// printing side does the same to the same field.
class HalvedHeight
{
public:
    explicit HalvedHeight(LOGFONTW& font) noexcept : m_font(font)
    {
        m_font.lfHeight /= 2;
    }
    HalvedHeight(const HalvedHeight&) = delete;
    HalvedHeight& operator=(const HalvedHeight&) = delete;
    ~HalvedHeight()
    {
        m_font.lfHeight *= 2;
    }

private:
    LOGFONTW& m_font;
};

// The face name of a block from elsewhere may lack its terminator.
HFONT CreateBlockFont(const WatermarkBlock& block) noexcept
{
    LOGFONTW font = block.font;
    font.lfFaceName[LF_FACESIZE - 1] = L'\0';
    return CreateFontIndirectW(&font);
}

bool DrawText(HDC dc, const WatermarkBlock& block, const TextPlacement& place, LONG fontHeight) noexcept
{
    const auto text = WatermarkText(block);
    if (SetTextColor(dc, block.color) == CLR_INVALID)
    {
        LogError("%s, failed to call SetTextColor.\n", kFunction);
        return false;
    }
    if (SetTextAlign(dc, place.alignment) == GDI_ERROR)
    {
        LogError("%s, failed to call SetTextAlign.\n", kFunction);
        return false;
    }
    if (SetBkMode(dc, TRANSPARENT) == 0)
    {
        LogError("%s, failed to call SetBkMode.\n", kFunction);
        return false;
    }
    LogAt(kLogInfo,
          "%s, X: %d, Y: %d, angle: %f, isExceed: %d, fontHeight: %d, text: %S.\n",
          kFunction,
          place.x,
          place.y,
          place.angle,
          place.isExceed ? 1 : 0,
          static_cast<int>(fontHeight),
          text.text);
    if (TextOutW(dc, place.x, place.y, text.text, static_cast<int>(std::wcslen(text.text))) == FALSE)
    {
        LogError("%s, failed to draw text: %S.\n", kFunction, text.text);
        return false;
    }
    return true;
}

} // namespace

bool DrawWatermarkOnBMP(HDC dc, const RECT& area, WatermarkBlock& block) noexcept
{
    // At the end the height is written back, the font deleted and only then the one before selected again: the font is
    // deleted while still selected, which GDI puts off until then. The order is intended.
    SelectAtEnd previousFont;
    FontOwner font;
    const HalvedHeight halvedHeight(block.font);

    const LONG fontHeight = std::abs(block.font.lfHeight);
    const auto units = static_cast<uint32_t>(std::wcslen(WatermarkText(block).text));
    const TextPlacement place = PlaceText(area.right, area.bottom, fontHeight, units);
    block.font.lfEscapement = place.escapement;
    block.font.lfOrientation = place.escapement;
    font.reset(CreateBlockFont(block));
    if (font == nullptr)
    {
        LogError("%s, failed to CreateFontIndirectW.\n", kFunction);
        return false;
    }
    previousFont.Remember(dc, SelectObject(dc, font.get()));
    return DrawText(dc, block, place, fontHeight);
}

} // namespace tsypr::Watermarker
