// Places on a surface and the pixels there, in the terms of the window system: whole pixels, y downwards.
// What views make of them, at which scale, is not known here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace Platform {

struct Point {
    int x = 0;
    int y = 0;

    bool operator==(const Point&) const = default;
};

struct Size {
    int width = 0;
    int height = 0;

    bool operator==(const Size&) const = default;
};

struct Rect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool empty() const { return width <= 0 || height <= 0; }
    bool contains(Point p) const { return p.x >= x && p.y >= y && p.x < x + width && p.y < y + height; }
    bool operator==(const Rect&) const = default;
};

// The part that two rectangles share; empty when they share none.
Rect intersection(const Rect& a, const Rect& b);

// 0xAARRGGBB, colours pre-multiplied by alpha. A window is opaque: it shows the colours and ignores alpha.
using Argb = std::uint32_t;

// Rows of pixels that somebody else owns. `stride` counts pixels from one row to the next.
struct PixelView {
    const Argb* pixels = nullptr;
    int width = 0;
    int height = 0;
    int stride = 0;

    const Argb* row(int y) const { return pixels + static_cast<std::ptrdiff_t>(y) * stride; }
};

// The same to draw into.
struct Canvas {
    Argb* pixels = nullptr;
    int width = 0;
    int height = 0;
    int stride = 0;

    Argb* row(int y) const { return pixels + static_cast<std::ptrdiff_t>(y) * stride; }
    PixelView view() const { return {pixels, width, height, stride}; }
};

// Replaces what is in `rect`, as far as the canvas reaches.
void fill(const Canvas& canvas, const Rect& rect, Argb colour);

} // namespace Platform
