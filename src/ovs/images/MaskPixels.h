// Alpha alone, a byte a pixel: masks of layouts and the glyphs of text. Whoever draws brings the colour.
#pragma once

#include "drawing/Surface.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Images {

class MaskPixels {
public:
    MaskPixels() = default;
    explicit MaskPixels(const Drawing::ConstSurfaceView& alphaOf);

    int width() const { return width_; }
    int height() const { return height_; }
    const std::uint8_t* row(int y) const {
        return alpha_.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width_);
    }
    std::size_t bytes() const { return alpha_.size(); }

private:
    int width_ = 0;
    int height_ = 0;
    std::vector<std::uint8_t> alpha_;
};

// Draws the columns from..to (exclusive) of one row, beginning at `out`.
void drawMaskRow(const std::uint8_t* row, int from, int to, Drawing::Pixel* out, Drawing::Pixel colour);

// One pixel of it.
void drawMaskPixel(unsigned alpha, Drawing::Pixel& out, Drawing::Pixel colour);

} // namespace Images
