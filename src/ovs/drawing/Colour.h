// Colours as pixels hold them, and their text forms: "#rrggbb", "#aarrggbb" (pre-multiplied), "rgb(r,g,b[,a])",
// "hsv(h,s,v[,a])" with numbers in 0..1, and names. Images and the editor's colour options read them here.
#pragma once

#include "drawing/Surface.h"

#include <stdexcept>
#include <string_view>

namespace Drawing {

using Colour = Pixel;

inline constexpr Colour kTransparent = 0;
inline constexpr Colour kBlack = 0xFF000000;

class ColourError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Throws ColourError.
Colour parseColour(std::string_view text);

// Components in 0..1, not pre-multiplied; outside of it they are clamped.
Colour colourFromRGB(double red, double green, double blue, double alpha = 1.0);
Colour colourFromHSV(double hue, double saturation, double value, double alpha = 1.0);

constexpr unsigned alphaOf(Pixel pixel) { return pixel >> 24; }
constexpr unsigned redOf(Pixel pixel) { return pixel >> 16 & 0xFF; }
constexpr unsigned greenOf(Pixel pixel) { return pixel >> 8 & 0xFF; }
constexpr unsigned blueOf(Pixel pixel) { return pixel & 0xFF; }

constexpr Pixel pixelOf(unsigned alpha, unsigned red, unsigned green, unsigned blue) {
    return alpha << 24 | red << 16 | green << 8 | blue;
}

constexpr bool isPremultiplied(Pixel pixel) {
    return redOf(pixel) <= alphaOf(pixel) && greenOf(pixel) <= alphaOf(pixel) && blueOf(pixel) <= alphaOf(pixel);
}

// x * y / 255, rounded, for x and y in 0..255.
constexpr unsigned multiply255(unsigned x, unsigned y) {
    const unsigned product = x * y + 128;
    return (product + (product >> 8)) >> 8;
}

// All four channels times `factor` / 255, two channels in one multiplication.
constexpr Pixel scaled(Pixel pixel, unsigned factor) {
    constexpr Pixel kEven = 0x00FF00FF;
    Pixel even = (pixel & kEven) * factor + 0x00800080;
    even = (even + (even >> 8 & kEven)) >> 8 & kEven;
    Pixel odd = (pixel >> 8 & kEven) * factor + 0x00800080;
    odd = (odd + (odd >> 8 & kEven)) & ~kEven;
    return even | odd;
}

// `source` over `destination`, both pre-multiplied.
constexpr Pixel over(Pixel source, Pixel destination) {
    return source + scaled(destination, 255 - alphaOf(source));
}

} // namespace Drawing
