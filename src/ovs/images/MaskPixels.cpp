#include "images/MaskPixels.h"

#include "drawing/Colour.h"

#include <algorithm>

namespace Images {

MaskPixels::MaskPixels(const Drawing::ConstSurfaceView& alphaOf)
    : width_(alphaOf.width), height_(alphaOf.height),
      alpha_(static_cast<std::size_t>(alphaOf.width) * static_cast<std::size_t>(alphaOf.height)) {
    std::uint8_t* out = alpha_.data();
    for (int y = 0; y < height_; ++y) {
        out = std::transform(alphaOf.row(y), alphaOf.row(y) + width_, out, [](Drawing::Pixel pixel) {
            return static_cast<std::uint8_t>(Drawing::alphaOf(pixel));
        });
    }
}

void drawMaskPixel(unsigned alpha, Drawing::Pixel& out, Drawing::Pixel colour) {
    out = Drawing::over(Drawing::scaled(colour, alpha), out);
}

void drawMaskRow(const std::uint8_t* row, int from, int to, Drawing::Pixel* out, Drawing::Pixel colour) {
    for (int x = from; x < to; ++x, ++out) {
        if (row[x] != 0) {
            drawMaskPixel(row[x], *out, colour);
        }
    }
}

} // namespace Images
