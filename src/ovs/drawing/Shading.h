// Where the colour of a pixel comes from. Each source has row(y), then at(x) for pixels of that row, inlined into the
// loops that blend: there is no call a pixel. steps() is what a pixel costs.
#pragma once

#include "drawing/Paint.h"

#include <array>
#include <cmath>
#include <cstdint>

namespace Drawing {

struct SolidSource {
    Pixel colour;

    static unsigned steps() { return 1; }
    bool isOpaque() const { return alphaOf(colour) == 255; }
    void row(int) {}
    Pixel at(int) const { return colour; }
};

using ColourTable = std::array<Pixel, GradientTable::kSize>;

// The table index in 1/65536 steps along a row.
class LinearSource {
public:
    // `t` is atX * x + atY * y + at0 for pixel centres.
    LinearSource(const Pixel* table, bool opaque, double atX, double atY, double at0)
        : table_(table), opaque_(opaque), atX_(limited(atX)), atY_(limited(atY)), at0_(limited(at0)),
          step_(static_cast<std::int64_t>(atX_ * kUnit)) {}

    static unsigned steps() { return 2; }
    bool isOpaque() const { return opaque_; }
    void row(int y) { start_ = static_cast<std::int64_t>((atX_ * 0.5 + atY_ * (y + 0.5) + at0_) * kUnit); }
    Pixel at(int x) const {
        const std::int64_t index = (start_ + step_ * x) >> 16;
        return table_[index < 0 ? 0 : index > kLast ? kLast : index];
    }

private:
    static constexpr std::int64_t kLast = GradientTable::kSize - 1;
    static constexpr double kUnit = 65536.0 * GradientTable::kSize;

    // Steeper than this, a gradient is an edge; and everything still fits into 64 bits.
    static double limited(double value) {
        constexpr double kMost = 1e5;
        return std::fmax(-kMost, std::fmin(kMost, value));
    }

    const Pixel* table_;
    bool opaque_;
    double atX_;
    double atY_;
    double at0_;
    std::int64_t step_;
    std::int64_t start_ = 0;
};

class RadialSource {
public:
    // `toUnit` leads from pixels to where the gradient is the unit circle.
    RadialSource(const Pixel* table, bool opaque, const Transform& toUnit)
        : table_(table), opaque_(opaque), toUnit_(toUnit), stepX_(static_cast<float>(toUnit.a * kSize)),
          stepY_(static_cast<float>(toUnit.b * kSize)) {}

    static unsigned steps() { return 8; }
    bool isOpaque() const { return opaque_; }
    void row(int y) {
        const Point start = toUnit_.apply({0.5, y + 0.5});
        startX_ = static_cast<float>(start.x * kSize);
        startY_ = static_cast<float>(start.y * kSize);
    }
    Pixel at(int x) const {
        const float dx = startX_ + stepX_ * static_cast<float>(x);
        const float dy = startY_ + stepY_ * static_cast<float>(x);
        const float distance = std::sqrt(dx * dx + dy * dy);
        return table_[distance < kSize - 1 ? static_cast<int>(distance) : static_cast<int>(kSize) - 1];
    }

private:
    static constexpr float kSize = GradientTable::kSize;

    const Pixel* table_;
    bool opaque_;
    Transform toUnit_;
    float stepX_;
    float stepY_;
    float startX_ = 0.0f;
    float startY_ = 0.0f;
};

enum class Edges { repeat, hold };

// Pixels of a picture, between four of them where they do not fall onto ours.
template <Edges edges>
class PictureSource {
public:
    // `toPicture` leads from pixels of the surface to those of the picture.
    PictureSource(const ConstSurfaceView& picture, const Transform& toPicture)
        : picture_(picture), toPicture_(toPicture),
          aligned_(isNear(toPicture.a, 1.0) && isNear(toPicture.b, 0.0) && isNear(toPicture.c, 0.0) &&
                   isNear(toPicture.d, 1.0) && isNear(toPicture.e, std::round(toPicture.e)) &&
                   isNear(toPicture.f, std::round(toPicture.f))) {}

    unsigned steps() const { return aligned_ ? 8 : 32; }
    bool isOpaque() const { return false; }
    void row(int y) { start_ = toPicture_.apply({0.5, y + 0.5}); }
    Pixel at(int x) const {
        const double u = start_.x + toPicture_.a * x;
        const double v = start_.y + toPicture_.b * x;
        if (aligned_) {
            return pixel(whole(u), whole(v));
        }
        return between(u - 0.5, v - 0.5);
    }

private:
    // Within what would not show across the largest surface.
    static bool isNear(double value, double wanted) { return std::abs(value - wanted) < 1e-7; }

    static int whole(double value) {
        constexpr double kMost = 1e9;
        return static_cast<int>(std::floor(std::fmax(-kMost, std::fmin(kMost, value))));
    }

    static int inside(int index, int size) {
        if constexpr (edges == Edges::hold) {
            return index < 0 ? 0 : index >= size ? size - 1 : index;
        } else {
            const int rest = index % size;
            return rest < 0 ? rest + size : rest;
        }
    }

    Pixel pixel(int u, int v) const {
        return picture_.at(inside(u, picture_.width), inside(v, picture_.height));
    }

    Pixel between(double u, double v) const {
        const int left = whole(u);
        const int top = whole(v);
        const auto right = static_cast<unsigned>((u - left) * 256.0) & 255U;
        const auto below = static_cast<unsigned>((v - top) * 256.0) & 255U;
        const Pixel upper = mixed(pixel(left, top), pixel(left + 1, top), right);
        const Pixel lower = mixed(pixel(left, top + 1), pixel(left + 1, top + 1), right);
        return mixed(upper, lower, below);
    }

    // `part` in 0..255 of 256.
    static Pixel mixed(Pixel from, Pixel to, unsigned part) {
        constexpr Pixel kEven = 0x00FF00FF;
        const Pixel even = ((from & kEven) * (256 - part) + (to & kEven) * part + 0x00800080) >> 8 & kEven;
        const Pixel odd =
            ((from >> 8 & kEven) * (256 - part) + (to >> 8 & kEven) * part + 0x00800080) & ~kEven;
        return even | odd;
    }

    ConstSurfaceView picture_;
    Transform toPicture_;
    bool aligned_;
    Point start_;
};

} // namespace Drawing
