#include "drawing/Surface.h"

#include <cstdlib>
#include <string>

namespace Drawing {

void checkSurfaceSize(std::int64_t width, std::int64_t height) {
    if (width < 0 || height < 0 || width > kMaxSurfaceSide || height > kMaxSurfaceSide ||
        width * height > kMaxSurfacePixels) {
        throw SurfaceError("Image too large: " + std::to_string(width) + " x " + std::to_string(height) +
                           " pixels");
    }
}

Surface::Surface(int width, int height) {
    checkSurfaceSize(width, height);
    if (width == 0 || height == 0) {
        return;
    }
    // calloc: pages that nothing is drawn on never cost memory.
    const auto count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    pixels_.reset(static_cast<Pixel*>(std::calloc(count, sizeof(Pixel))));
    if (!pixels_) {
        throw SurfaceError("Out of memory for an image of " + std::to_string(width) + " x " +
                           std::to_string(height) + " pixels");
    }
    width_ = width;
    height_ = height;
}

void Surface::Free::operator()(Pixel* pixels) const noexcept {
    std::free(pixels);
}

} // namespace Drawing
