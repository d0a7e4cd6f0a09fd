// Pictures put on pictures pixel by pixel, where no transform is needed.
#pragma once

#include "drawing/Surface.h"

#include <cstdint>
#include <vector>

namespace Drawing {

// `source` over `target`, its left top corner at x, y; what lies outside is cut off. `opacity` in 0..255.
void compose(const SurfaceView& target, const ConstSurfaceView& source, int x = 0, int y = 0,
             unsigned opacity = 255);

// 8-bit RGBA rows without padding, no longer pre-multiplied: what image files hold; and back.
std::vector<std::uint8_t> straightRGBA(const ConstSurfaceView& view);
Surface surfaceFromRGBA(const std::uint8_t* rgba, int width, int height);

} // namespace Drawing
