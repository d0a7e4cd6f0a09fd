// A picture in memory, drawn on with soft edges: what the plots need and no more.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace Tool {

struct Colour {
    float r = 0; // 0..1
    float g = 0;
    float b = 0;
};

Colour blend(Colour from, Colour to, float part);

// Pixels, from the left top corner; the centre of the first is (0.5, 0.5).
struct Point {
    float x = 0;
    float y = 0;
};

using Stroke = std::vector<Point>; // a line through its points; one point is a dot

class Canvas {
public:
    Canvas(int width, int height, Colour background);

    int width() const { return width_; }
    int height() const { return height_; }
    Colour at(int x, int y) const { return pixels_[index(x, y)]; }

    // All of these leave alone what lies outside.
    void set(int x, int y, Colour colour, float opacity = 1);
    void fillRectangle(int left, int top, int right, int bottom, Colour colour, float opacity = 1);
    // Round ends and joins. Strokes of one call that cross do not show through each other.
    void draw(std::span<const Stroke> strokes, float lineWidth, Colour colour, float opacity = 1);

private:
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
    }

    int width_;
    int height_;
    std::vector<Colour> pixels_;
};

} // namespace Tool
