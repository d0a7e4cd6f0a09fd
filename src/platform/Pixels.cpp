#include "platform/Pixels.h"

#include <algorithm>

namespace Platform {

Rect intersection(const Rect& a, const Rect& b) {
    const int left = std::max(a.x, b.x);
    const int top = std::max(a.y, b.y);
    const int right = std::min(a.x + a.width, b.x + b.width);
    const int bottom = std::min(a.y + a.height, b.y + b.height);
    return {left, top, std::max(0, right - left), std::max(0, bottom - top)};
}

void fill(const Canvas& canvas, const Rect& rect, Argb colour) {
    const Rect part = intersection(rect, {0, 0, canvas.width, canvas.height});
    for (int y = part.y; y < part.y + part.height; ++y) {
        std::fill_n(canvas.row(y) + part.x, part.width, colour);
    }
}

} // namespace Platform
