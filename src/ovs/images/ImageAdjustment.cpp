#include "images/ImageAdjustment.h"

#include "drawing/Colour.h"

#include <array>
#include <cmath>
#include <cstdint>

namespace Images {

namespace {

using Levels = std::array<std::uint8_t, 256>;

Levels powers(double gamma) {
    Levels levels = {};
    for (std::size_t i = 0; i < levels.size(); ++i) {
        levels[i] =
            static_cast<std::uint8_t>(std::lround(255.0 * std::pow(static_cast<double>(i) / 255.0, gamma)));
    }
    return levels;
}

Drawing::Pixel withColours(Drawing::Pixel pixel, const Levels& levels) {
    const unsigned alpha = Drawing::alphaOf(pixel);
    if (alpha == 0) {
        return pixel;
    }
    const auto channel = [&](unsigned value) {
        return Drawing::multiply255(levels[(value * 255 + alpha / 2) / alpha], alpha);
    };
    return Drawing::pixelOf(alpha, channel(Drawing::redOf(pixel)), channel(Drawing::greenOf(pixel)),
                            channel(Drawing::blueOf(pixel)));
}

} // namespace

void adjust(const Drawing::SurfaceView& pixels, double gamma, double opacity, bool isMask) {
    const auto factor = static_cast<unsigned>(std::lround(opacity * 255.0));
    if (gamma == 1.0 && factor == 255) {
        return;
    }
    const Levels levels = powers(gamma);
    for (int y = 0; y < pixels.height; ++y) {
        for (int x = 0; x < pixels.width; ++x) {
            Drawing::Pixel& pixel = pixels.at(x, y);
            if (isMask) {
                pixel = Drawing::pixelOf(levels[Drawing::alphaOf(pixel)], 0, 0, 0);
            } else if (gamma != 1.0) {
                pixel = withColours(pixel, levels);
            }
            pixel = Drawing::scaled(pixel, factor);
        }
    }
}

} // namespace Images
