#include "drawing/Compose.h"

#include "drawing/Colour.h"

#include <algorithm>


namespace Drawing {

void compose(const SurfaceView& target, const ConstSurfaceView& source, int x, int y, unsigned opacity) {
    const IntRect place = intersection(target.bounds(), {x, y, source.width, source.height});
    if (place.isEmpty()) {
        return;
    }
    for (int row = 0; row < place.height; ++row) {
        Pixel* const to = target.row(place.y + row) + place.x;
        const Pixel* const from = source.row(place.y - y + row) + (place.x - x);
        if (opacity == 255) {
            for (int i = 0; i < place.width; ++i) {
                to[i] = over(from[i], to[i]);
            }
        } else {
            for (int i = 0; i < place.width; ++i) {
                to[i] = over(scaled(from[i], opacity), to[i]);
            }
        }
    }
}

std::vector<std::uint8_t> straightRGBA(const ConstSurfaceView& view) {
    std::vector<std::uint8_t> result;
    result.reserve(static_cast<std::size_t>(view.width) * static_cast<std::size_t>(view.height) * 4);
    for (int y = 0; y < view.height; ++y) {
        const Pixel* const row = view.row(y);
        for (int x = 0; x < view.width; ++x) {
            const Pixel pixel = row[x];
            const unsigned alpha = alphaOf(pixel);
            const auto straight = [alpha](unsigned channel) {
                return static_cast<std::uint8_t>(
                    alpha == 0 ? 0 : std::min(255U, (channel * 255 + alpha / 2) / alpha));
            };
            result.push_back(straight(redOf(pixel)));
            result.push_back(straight(greenOf(pixel)));
            result.push_back(straight(blueOf(pixel)));
            result.push_back(static_cast<std::uint8_t>(alpha));
        }
    }
    return result;
}

Surface surfaceFromRGBA(const std::uint8_t* rgba, int width, int height) {
    Surface surface(width, height);
    const SurfaceView view = surface.view();
    for (int y = 0; y < view.height; ++y) {
        Pixel* const row = view.row(y);
        for (int x = 0; x < view.width; ++x, rgba += 4) {
            const unsigned alpha = rgba[3];
            row[x] = pixelOf(alpha, multiply255(rgba[0], alpha), multiply255(rgba[1], alpha),
                             multiply255(rgba[2], alpha));
        }
    }
    return surface;
}

} // namespace Drawing
