// Outlines: move, line, quadratic and cubic curves, close; and the shapes that are made of them. Path data in the
// notation of SVG is read by PathData.h.
#pragma once

#include "drawing/Geometry.h"

#include <cstdint>
#include <vector>

namespace Drawing {

class Path {
public:
    // How many points each takes from the list: 1, 1, 2, 3, 0.
    enum class Verb : std::uint8_t { move, line, quad, cubic, close };

    bool isEmpty() const { return verbs_.empty(); }
    const std::vector<Verb>& verbs() const { return verbs_; }
    const std::vector<Point>& points() const { return points_; }

    void moveTo(Point p);
    // These begin at 0,0 when nothing came before, and after close() where the closed outline began.
    void lineTo(Point p);
    void quadTo(Point control, Point p);
    void cubicTo(Point control1, Point control2, Point p);
    // An arc of an ellipse as SVG has it, as cubic curves; `rotation` in degrees.
    void arcTo(double radiusX, double radiusY, double rotation, bool large, bool clockwise, Point p);
    void close();

    // The shapes go clockwise as seen.
    void addRect(const Rect& rect);
    // Radii are limited to half the side.
    void addRoundedRect(const Rect& rect, double radiusX, double radiusY);
    void addEllipse(Point centre, double radiusX, double radiusY);
    // `points` corners at the first radius, from straight up; between each two one at the second radius, halfway.
    void addStar(Point centre, int points, double radius1, double radius2, double rotationDegrees);
    void append(const Path& other, const Transform& transform);
    void clear();

    // Where the pen is: the last point drawn to.
    Point current() const { return current_; }
    // The smallest rectangle that holds the outline itself, curves included and control points not.
    Rect bounds() const;

private:
    void begin();

    std::vector<Verb> verbs_;
    std::vector<Point> points_;
    Point start_;
    Point current_;
    bool open_ = false;
};

} // namespace Drawing
