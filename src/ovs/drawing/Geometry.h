// Points, rectangles and affine transforms of the plane. x points right, y down; user units are doubles, pixels
// are ints.
#pragma once

#include <algorithm>
#include <cmath>
#include <optional>

namespace Drawing {

struct Point {
    double x = 0.0;
    double y = 0.0;

    friend bool operator==(const Point&, const Point&) = default;
};

struct Rect {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;

    double right() const { return x + width; }
    double bottom() const { return y + height; }
    bool isEmpty() const { return !(width > 0.0 && height > 0.0); }

    friend bool operator==(const Rect&, const Rect&) = default;
};

// Edges are summed in 64 bits where they are compared: a rectangle from a document may lie anywhere.
struct IntRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool isEmpty() const { return width <= 0 || height <= 0; }
    bool contains(int px, int py) const {
        return px >= x && py >= y && static_cast<long long>(px) - x < width &&
               static_cast<long long>(py) - y < height;
    }

    friend bool operator==(const IntRect&, const IntRect&) = default;
};

inline IntRect intersection(const IntRect& one, const IntRect& other) {
    const auto right = std::min(static_cast<long long>(one.x) + one.width,
                                static_cast<long long>(other.x) + other.width);
    const auto bottom = std::min(static_cast<long long>(one.y) + one.height,
                                 static_cast<long long>(other.y) + other.height);
    const int x = std::max(one.x, other.x);
    const int y = std::max(one.y, other.y);
    if (right <= x || bottom <= y) {
        return {x, y, 0, 0};
    }
    return {x, y, static_cast<int>(right - x), static_cast<int>(bottom - y)};
}

// x' = a x + c y + e, y' = b x + d y + f.
struct Transform {
    double a = 1.0;
    double b = 0.0;
    double c = 0.0;
    double d = 1.0;
    double e = 0.0;
    double f = 0.0;

    static Transform offset(double x, double y) { return {1.0, 0.0, 0.0, 1.0, x, y}; }
    static Transform scale(double x, double y) { return {x, 0.0, 0.0, y, 0.0, 0.0}; }
    static Transform shear(double x, double y) { return {1.0, y, x, 1.0, 0.0, 0.0}; }
    // Clockwise as seen, since y points down.
    static Transform rotation(double radians) {
        const double cosine = std::cos(radians);
        const double sine = std::sin(radians);
        return {cosine, sine, -sine, cosine, 0.0, 0.0};
    }

    Point apply(Point p) const { return {a * p.x + c * p.y + e, b * p.x + d * p.y + f}; }
    double determinant() const { return a * d - b * c; }
    // The larger of the two column vectors' lengths: how much a short line may grow.
    double maxScale() const { return std::sqrt(std::max(a * a + b * b, c * c + d * d)); }
    bool isFinite() const {
        return std::isfinite(a) && std::isfinite(b) && std::isfinite(c) && std::isfinite(d) &&
               std::isfinite(e) && std::isfinite(f);
    }
    // nullopt when the plane is flattened to a line or a point, or leaves the range of numbers.
    std::optional<Transform> inverse() const;

    friend bool operator==(const Transform&, const Transform&) = default;
};

// The transform that applies `inner` first: `outer * inner` is how a coordinate system nests in another.
inline Transform operator*(const Transform& outer, const Transform& inner) {
    return {outer.a * inner.a + outer.c * inner.b,           outer.b * inner.a + outer.d * inner.b,
            outer.a * inner.c + outer.c * inner.d,           outer.b * inner.c + outer.d * inner.d,
            outer.a * inner.e + outer.c * inner.f + outer.e, outer.b * inner.e + outer.d * inner.f + outer.f};
}

inline std::optional<Transform> Transform::inverse() const {
    const double det = determinant();
    if (!std::isfinite(det) || std::abs(det) < 1e-300) {
        return std::nullopt;
    }
    const Transform result = {d / det,  -b / det, -c / det, a / det, (c * f - d * e) / det,
                              (b * e - a * f) / det};
    return result.isFinite() ? std::optional(result) : std::nullopt;
}

} // namespace Drawing
