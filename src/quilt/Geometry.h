// Whole numbers on a grid: document units where a layout is read, pixels of the surface everywhere else.
#pragma once

#include <algorithm>
#include <cstdint>

namespace Quilt {

struct Point {
    std::int32_t x = 0;
    std::int32_t y = 0;

    bool operator==(const Point&) const = default;
};

struct Rectangle {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t width = 0; // never negative in what is shown
    std::int32_t height = 0;

    bool operator==(const Rectangle&) const = default;

    std::int32_t right() const { return left + width; }
    std::int32_t bottom() const { return top + height; }
    bool empty() const { return width <= 0 || height <= 0; }
    bool contains(Point p) const { return p.x >= left && p.y >= top && p.x < right() && p.y < bottom(); }
    Rectangle movedBy(Point by) const { return {left + by.x, top + by.y, width, height}; }
    Point origin() const { return {left, top}; }
};

inline Rectangle intersection(const Rectangle& a, const Rectangle& b) {
    const std::int32_t left = std::max(a.left, b.left);
    const std::int32_t top = std::max(a.top, b.top);
    return {left, top, std::max(0, std::min(a.right(), b.right()) - left),
            std::max(0, std::min(a.bottom(), b.bottom()) - top)};
}

// The smallest rectangle around both; an empty one does not count.
inline Rectangle united(const Rectangle& a, const Rectangle& b) {
    if (a.empty() || b.empty()) {
        return a.empty() ? b : a;
    }
    const std::int32_t left = std::min(a.left, b.left);
    const std::int32_t top = std::min(a.top, b.top);
    return {left, top, std::max(a.right(), b.right()) - left, std::max(a.bottom(), b.bottom()) - top};
}

} // namespace Quilt
