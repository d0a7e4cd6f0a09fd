// Turns outlines into straight lines for a sink with moveTo(Point), lineTo(Point), turnTo(Point) and close(). Curves are
// cut into equal steps of their parameter, as many as keep them within the tolerance; all but the last end in a turnTo():
// there the outline has no corner.
#pragma once

#include "drawing/Path.h"

#include <algorithm>
#include <cmath>

namespace Drawing {

// For a curve that spans a surface of the largest size more than there are pixels to tell.
inline constexpr double kMostCurveSteps = 1024.0;

// The error of n steps is at most an eighth of the greatest second derivative / n^2.
inline int curveSteps(double secondDerivative, double tolerance) {
    const double steps = std::ceil(std::sqrt(secondDerivative / (8.0 * tolerance)));
    return steps >= 1.0 ? static_cast<int>(std::min(steps, kMostCurveSteps)) : 1; // not a number: one step
}

template <class Sink>
void flattenQuad(Point p0, Point p1, Point p2, double tolerance, Sink& sink) {
    const double ax = p0.x - 2.0 * p1.x + p2.x;
    const double ay = p0.y - 2.0 * p1.y + p2.y;
    const int steps = curveSteps(2.0 * std::hypot(ax, ay), tolerance);
    const double bx = 2.0 * (p1.x - p0.x);
    const double by = 2.0 * (p1.y - p0.y);
    for (int i = 1; i < steps; ++i) {
        const double t = static_cast<double>(i) / steps;
        sink.turnTo({p0.x + t * (bx + t * ax), p0.y + t * (by + t * ay)});
    }
    sink.lineTo(p2);
}

template <class Sink>
void flattenCubic(Point p0, Point p1, Point p2, Point p3, double tolerance, Sink& sink) {
    const double ux = p0.x - 2.0 * p1.x + p2.x;
    const double uy = p0.y - 2.0 * p1.y + p2.y;
    const double vx = p1.x - 2.0 * p2.x + p3.x;
    const double vy = p1.y - 2.0 * p2.y + p3.y;
    const int steps =
        curveSteps(6.0 * std::sqrt(std::max(ux * ux + uy * uy, vx * vx + vy * vy)), tolerance);
    const double ax = vx - ux;
    const double ay = vy - uy;
    const double cx = 3.0 * (p1.x - p0.x);
    const double cy = 3.0 * (p1.y - p0.y);
    for (int i = 1; i < steps; ++i) {
        const double t = static_cast<double>(i) / steps;
        sink.turnTo({p0.x + t * (cx + t * (3.0 * ux + t * ax)), p0.y + t * (cy + t * (3.0 * uy + t * ay))});
    }
    sink.lineTo(p3);
}

// Tells a sink that wants to know, by smooth() and, before close(), smoothStart(), of ends of curves that are no
// corners either, since the outline goes on in the same direction.
template <class Sink>
class Smoothness {
public:
    explicit Smoothness(Sink& sink) : sink_(sink) {}

    void begin() { arriving_ = first_ = {}; }

    // Of the first and the last leg those with a length.
    template <std::size_t count>
    void pass(const Point (&points)[count]) {
        if constexpr (kWanted) {
            const Point leaving = direction(points, false);
            if (isStraightOn(arriving_, leaving)) {
                sink_.smooth();
            }
            first_ = first_ == Point() ? leaving : first_;
            arriving_ = direction(points, true);
        }
    }

    void close(Point at, Point start) {
        if constexpr (kWanted) {
            if (!(at == start)) {
                pass({at, start});
            }
            if (isStraightOn(arriving_, first_)) {
                sink_.smoothStart();
            }
        }
    }

private:
    static constexpr bool kWanted = requires(Sink& sink) { sink.smooth(); };

    template <std::size_t count>
    static Point direction(const Point (&points)[count], bool last) {
        const Point& end = last ? points[count - 1] : points[0];
        const double sign = last ? -1.0 : 1.0;
        for (std::size_t i = 1; i < count; ++i) {
            const Point& other = last ? points[count - 1 - i] : points[i];
            if (!(other == end)) {
                return {sign * (other.x - end.x), sign * (other.y - end.y)};
            }
        }
        return {};
    }

    static bool isStraightOn(Point u, Point v) {
        constexpr double kNoCorner = 0.01; // half a degree
        return std::abs(u.x * v.y - u.y * v.x) < kNoCorner * (u.x * v.x + u.y * v.y);
    }

    Sink& sink_;
    Point arriving_;
    Point first_;
};

// `tolerance` counts in the units that `transform` leads to.
template <class Sink>
void flatten(const Path& path, const Transform& transform, double tolerance, Sink& sink) {
    const Point* next = path.points().data();
    Point at;
    Point start;
    Smoothness<Sink> smoothness(sink);
    for (const Path::Verb verb : path.verbs()) {
        switch (verb) {
        case Path::Verb::move:
            start = at = transform.apply(*next++);
            sink.moveTo(at);
            smoothness.begin();
            break;
        case Path::Verb::line: {
            const Point to = transform.apply(*next++);
            smoothness.pass({at, to});
            at = to;
            sink.lineTo(at);
            break;
        }
        case Path::Verb::quad: {
            const Point p1 = transform.apply(next[0]);
            const Point p2 = transform.apply(next[1]);
            smoothness.pass({at, p1, p2});
            flattenQuad(at, p1, p2, tolerance, sink);
            at = p2;
            next += 2;
            break;
        }
        case Path::Verb::cubic: {
            const Point p1 = transform.apply(next[0]);
            const Point p2 = transform.apply(next[1]);
            const Point p3 = transform.apply(next[2]);
            smoothness.pass({at, p1, p2, p3});
            flattenCubic(at, p1, p2, p3, tolerance, sink);
            at = p3;
            next += 3;
            break;
        }
        case Path::Verb::close:
            smoothness.close(at, start);
            sink.close();
            at = start;
            break;
        }
    }
}

} // namespace Drawing
