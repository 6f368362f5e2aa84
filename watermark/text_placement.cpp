#include "watermark/text_placement.h"

#include <cmath>
#include <limits>

namespace tsypr
{
namespace
{

// Short on purpose: the client's printing side computes with the same eight decimals.
constexpr double kPi = 3.14159265;
// How much longer than the diagonal a text counts that has one font height for each character.
constexpr double kWidestText = 1.7777777777777777;

// Toward zero; what no int can hold becomes the smallest one.
int Truncated(double value) noexcept
{
    constexpr double kEnd = 2147483648.0;
    return value > -kEnd && value < kEnd ? static_cast<int>(value) : std::numeric_limits<int>::min();
}

// In 32-bit arithmetic, wrapping around.
double DiagonalSquare(int32_t width, int32_t height) noexcept
{
    const auto w = static_cast<uint32_t>(width);
    const auto h = static_cast<uint32_t>(height);
    return static_cast<double>(static_cast<int32_t>(w * w + h * h));
}

} // namespace

TextPlacement PlaceText(int32_t width, int32_t height, int32_t fontHeight, uint32_t textUnits) noexcept
{
    TextPlacement place = {};
    const double slope =
        width == 0 ? std::numeric_limits<double>::infinity() : static_cast<double>(height) / static_cast<double>(width);
    place.angle = std::atan(slope) * 180.0 / kPi;
    place.escapement = Truncated(place.angle * 10);
    const uint32_t estimatedLength = textUnits * static_cast<uint32_t>(fontHeight);
    place.isExceed = estimatedLength > std::sqrt(DiagonalSquare(width, height)) * kWidestText;
    if (place.isExceed)
    {
        place.x = 0;
        place.y = height - fontHeight / 2;
        place.alignment = TA_LEFT | TA_TOP;
    }
    else
    {
        place.x = width / 2 - fontHeight / 2;
        const int middle = height / 2;
        place.y = Truncated(middle - slope * fontHeight * 0.5);
        place.alignment = TA_CENTER | TA_TOP;
    }
    return place;
}

} // namespace tsypr
