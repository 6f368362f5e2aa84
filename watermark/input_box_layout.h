// Where the windows of the input box stand, at 96 pixels to the inch and at any other number.
#ifndef TESSARY_WATERMARK_INPUT_BOX_LAYOUT_H
#define TESSARY_WATERMARK_INPUT_BOX_LAYOUT_H

namespace tsypr::ZarnInputBox
{

// Pixels for each 1/96 of an inch.
struct Scale
{
    float x = 1.0F;
    float y = 1.0F;
};

struct Place
{
    int x;
    int y;
    int width;
    int height;
};

inline constexpr Place kBoxPlace{0, 0, 480, 140}; // centred when it is shown
inline constexpr Place kEditPlace{5, 75, 445, 20};
inline constexpr Place kOkPlace{350, 10, 100, 25};
inline constexpr Place kCancelPlace{350, 45, 100, 25};
inline constexpr Place kPromptPlace{5, 10, 330, 25};
inline constexpr int kFontHeight = 20;

// Toward zero.
constexpr int Scaled(int length, float scale) noexcept
{
    return static_cast<int>(static_cast<float>(length) * scale);
}

constexpr Place Scaled(const Place& place, const Scale& scale) noexcept
{
    return {Scaled(place.x, scale.x),
            Scaled(place.y, scale.y),
            Scaled(place.width, scale.x),
            Scaled(place.height, scale.y)};
}

} // namespace tsypr::ZarnInputBox

#endif
