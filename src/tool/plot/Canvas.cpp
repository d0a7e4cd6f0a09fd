#include "tool/plot/Canvas.h"

#include <algorithm>
#include <cmath>

namespace Tool {

namespace {

float distance(Point p, Point a, Point b) {
    const float dx = b.x - a.x;
    const float dy = b.y - a.y;
    const float length2 = dx * dx + dy * dy;
    const float along =
        length2 > 0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / length2, 0.0f, 1.0f) : 0.0f;
    return std::hypot(p.x - a.x - along * dx, p.y - a.y - along * dy);
}

struct Box {
    int left;
    int top;
    int right;
    int bottom;

    void clip(int width, int height) {
        left = std::max(left, 0);
        top = std::max(top, 0);
        right = std::min(right, width);
        bottom = std::min(bottom, height);
    }
};

Box boxAround(Point a, Point b, float margin) {
    const auto low = [margin](float p, float q) {
        return static_cast<int>(std::floor(std::min(p, q) - margin));
    };
    const auto high = [margin](float p, float q) {
        return static_cast<int>(std::ceil(std::max(p, q) + margin));
    };
    return {low(a.x, b.x), low(a.y, b.y), high(a.x, b.x), high(a.y, b.y)};
}

// How much of each pixel is covered.
class Mask {
public:
    Mask(const Box& box)
        : box_(box), width_(std::max(box.right - box.left, 0)),
          cover_(static_cast<std::size_t>(width_) *
                 static_cast<std::size_t>(std::max(box.bottom - box.top, 0))) {}

    const Box& box() const { return box_; }
    float at(int x, int y) const { return cover_[index(x, y)]; }

    void line(Point a, Point b, float radius) {
        Box box = boxAround(a, b, radius + 1);
        box = {std::max(box.left, box_.left), std::max(box.top, box_.top), std::min(box.right, box_.right),
               std::min(box.bottom, box_.bottom)};
        for (int y = box.top; y < box.bottom; ++y) {
            for (int x = box.left; x < box.right; ++x) {
                const Point centre = {static_cast<float>(x) + 0.5f, static_cast<float>(y) + 0.5f};
                const float cover = std::clamp(radius + 0.5f - distance(centre, a, b), 0.0f, 1.0f);
                float& pixel = cover_[index(x, y)];
                pixel = std::max(pixel, cover);
            }
        }
    }

private:
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y - box_.top) * static_cast<std::size_t>(width_) +
               static_cast<std::size_t>(x - box_.left);
    }

    Box box_;
    int width_;
    std::vector<float> cover_;
};

} // namespace

Colour blend(Colour from, Colour to, float part) {
    return {from.r + part * (to.r - from.r), from.g + part * (to.g - from.g),
            from.b + part * (to.b - from.b)};
}

Canvas::Canvas(int width, int height, Colour background)
    : width_(width), height_(height),
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), background) {}

void Canvas::set(int x, int y, Colour colour, float opacity) {
    if (x >= 0 && x < width_ && y >= 0 && y < height_) {
        Colour& pixel = pixels_[index(x, y)];
        pixel = blend(pixel, colour, opacity);
    }
}

void Canvas::fillRectangle(int left, int top, int right, int bottom, Colour colour, float opacity) {
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            set(x, y, colour, opacity);
        }
    }
}

void Canvas::draw(std::span<const Stroke> strokes, float lineWidth, Colour colour, float opacity) {
    const float radius = lineWidth / 2;
    Box around = {width_, height_, 0, 0};
    for (const Stroke& stroke : strokes) {
        for (const Point point : stroke) {
            const Box box = boxAround(point, point, radius + 1);
            around = {std::min(around.left, box.left), std::min(around.top, box.top),
                      std::max(around.right, box.right), std::max(around.bottom, box.bottom)};
        }
    }
    around.clip(width_, height_);
    Mask mask(around);
    for (const Stroke& stroke : strokes) {
        for (std::size_t i = 0; i < stroke.size(); ++i) {
            mask.line(stroke[i], stroke[std::min(i + 1, stroke.size() - 1)], radius);
        }
    }
    for (int y = around.top; y < around.bottom; ++y) {
        for (int x = around.left; x < around.right; ++x) {
            set(x, y, colour, opacity * mask.at(x, y));
        }
    }
}

} // namespace Tool
