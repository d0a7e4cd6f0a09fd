#include "drawing/Path.h"

#include <numbers>

namespace Drawing {

namespace {

constexpr double kPi = std::numbers::pi;

// Distance of the control points of a quarter circle of radius 1: 4/3 tan(pi/8).
constexpr double kQuarterArc = 0.5522847498307936;

// Grows to take in points; holds nothing at first.
struct Extent {
    double left = INFINITY;
    double top = INFINITY;
    double right = -INFINITY;
    double bottom = -INFINITY;

    void include(Point p) {
        left = std::min(left, p.x);
        top = std::min(top, p.y);
        right = std::max(right, p.x);
        bottom = std::max(bottom, p.y);
    }
};

bool between(double t) {
    return t > 0.0 && t < 1.0;
}

Point cubicAt(const Point& p0, const Point& p1, const Point& p2, const Point& p3, double t) {
    const double s = 1.0 - t;
    const auto mix = [&](double a, double b, double c, double d) {
        return s * s * s * a + 3.0 * s * s * t * b + 3.0 * s * t * t * c + t * t * t * d;
    };
    return {mix(p0.x, p1.x, p2.x, p3.x), mix(p0.y, p1.y, p2.y, p3.y)};
}

// Where one coordinate of a cubic turns back: the roots of its derivative, up to two, in 0..1.
template <class Take>
void turningPoints(double v0, double v1, double v2, double v3, const Take& take) {
    const double a = v3 - 3.0 * v2 + 3.0 * v1 - v0;
    const double b = 2.0 * (v2 - 2.0 * v1 + v0);
    const double c = v1 - v0;
    if (std::abs(a) < 1e-12 * (std::abs(b) + std::abs(c))) {
        if (b != 0.0 && between(-c / b)) {
            take(-c / b);
        }
        return;
    }
    const double root = b * b - 4.0 * a * c;
    if (!(root >= 0.0) || a == 0.0) {
        return;
    }
    for (const double sign : {-1.0, 1.0}) {
        const double t = (-b + sign * std::sqrt(root)) / (2.0 * a);
        if (between(t)) {
            take(t);
        }
    }
}

void includeCubic(Extent& extent, Point p0, Point p1, Point p2, Point p3) {
    const auto take = [&](double t) { extent.include(cubicAt(p0, p1, p2, p3, t)); };
    turningPoints(p0.x, p1.x, p2.x, p3.x, take);
    turningPoints(p0.y, p1.y, p2.y, p3.y, take);
    extent.include(p3);
}

Point towards(Point from, Point to, double part) {
    return {from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part};
}

double angleOf(double ux, double uy, double vx, double vy) {
    return std::atan2(ux * vy - uy * vx, ux * vx + uy * vy);
}

} // namespace

void Path::begin() {
    if (!open_) {
        moveTo(current_);
    }
}

void Path::moveTo(Point p) {
    verbs_.push_back(Verb::move);
    points_.push_back(p);
    start_ = current_ = p;
    open_ = true;
}

void Path::lineTo(Point p) {
    begin();
    verbs_.push_back(Verb::line);
    points_.push_back(p);
    current_ = p;
}

void Path::quadTo(Point control, Point p) {
    begin();
    verbs_.push_back(Verb::quad);
    points_.insert(points_.end(), {control, p});
    current_ = p;
}

void Path::cubicTo(Point control1, Point control2, Point p) {
    begin();
    verbs_.push_back(Verb::cubic);
    points_.insert(points_.end(), {control1, control2, p});
    current_ = p;
}

void Path::close() {
    if (open_) {
        verbs_.push_back(Verb::close);
        current_ = start_;
        open_ = false;
    }
}

// From end points to centre and angles, as the appendix of SVG on arcs derives it; then a cubic for each quarter
// turn or less.
void Path::arcTo(double radiusX, double radiusY, double rotation, bool large, bool clockwise, Point p) {
    const Point from = current_;
    double rx = std::abs(radiusX);
    double ry = std::abs(radiusY);
    if (from == p) {
        return;
    }
    if (!(rx > 0.0 && ry > 0.0)) {
        lineTo(p);
        return;
    }
    const double phi = rotation * kPi / 180.0;
    const double cosine = std::cos(phi);
    const double sine = std::sin(phi);
    const double dx = (from.x - p.x) / 2.0;
    const double dy = (from.y - p.y) / 2.0;
    const double x1 = cosine * dx + sine * dy;
    const double y1 = -sine * dx + cosine * dy;
    const double reach = (x1 / rx) * (x1 / rx) + (y1 / ry) * (y1 / ry);
    if (reach > 1.0) { // the ends are further apart than the ellipse is wide: it grows until it fits
        rx *= std::sqrt(reach);
        ry *= std::sqrt(reach);
    }
    const double side = large == clockwise ? -1.0 : 1.0;
    const double away = reach > 0.0 ? side * std::sqrt(std::max(0.0, 1.0 / reach - 1.0)) : 0.0;
    const double cx1 = away * rx * y1 / ry;
    const double cy1 = -away * ry * x1 / rx;
    const Transform ellipse =
        Transform{cosine, sine, -sine, cosine, (from.x + p.x) / 2.0 + cosine * cx1 - sine * cy1,
                  (from.y + p.y) / 2.0 + sine * cx1 + cosine * cy1} *
        Transform::scale(rx, ry);
    const double ux = (x1 - cx1) / rx;
    const double uy = (y1 - cy1) / ry;
    double turn = angleOf(ux, uy, (-x1 - cx1) / rx, (-y1 - cy1) / ry);
    if (clockwise && turn < 0.0) {
        turn += 2.0 * kPi;
    } else if (!clockwise && turn > 0.0) {
        turn -= 2.0 * kPi;
    }
    if (!std::isfinite(turn) || !ellipse.isFinite()) {
        lineTo(p);
        return;
    }
    const int pieces = std::max(1, static_cast<int>(std::ceil(std::abs(turn) / (kPi / 2.0) - 1e-9)));
    const double step = turn / pieces;
    const double reachOut = 4.0 / 3.0 * std::tan(step / 4.0);
    double angle = std::atan2(uy, ux);
    for (int i = 0; i < pieces; ++i, angle += step) {
        const double c0 = std::cos(angle);
        const double s0 = std::sin(angle);
        const double c1 = std::cos(angle + step);
        const double s1 = std::sin(angle + step);
        const Point end = i + 1 == pieces ? p : ellipse.apply({c1, s1});
        cubicTo(ellipse.apply({c0 - reachOut * s0, s0 + reachOut * c0}),
                ellipse.apply({c1 + reachOut * s1, s1 - reachOut * c1}), end);
    }
}

void Path::addRect(const Rect& rect) {
    moveTo({rect.x, rect.y});
    lineTo({rect.right(), rect.y});
    lineTo({rect.right(), rect.bottom()});
    lineTo({rect.x, rect.bottom()});
    close();
}

void Path::addRoundedRect(const Rect& rect, double radiusX, double radiusY) {
    const double rx = std::min(radiusX, rect.width / 2.0);
    const double ry = std::min(radiusY, rect.height / 2.0);
    if (!(rx > 0.0 && ry > 0.0)) {
        addRect(rect);
        return;
    }
    const double left = rect.x;
    const double top = rect.y;
    const double right = rect.right();
    const double bottom = rect.bottom();
    const double kx = rx * (1.0 - kQuarterArc);
    const double ky = ry * (1.0 - kQuarterArc);
    moveTo({left + rx, top});
    lineTo({right - rx, top});
    cubicTo({right - kx, top}, {right, top + ky}, {right, top + ry});
    lineTo({right, bottom - ry});
    cubicTo({right, bottom - ky}, {right - kx, bottom}, {right - rx, bottom});
    lineTo({left + rx, bottom});
    cubicTo({left + kx, bottom}, {left, bottom - ky}, {left, bottom - ry});
    lineTo({left, top + ry});
    cubicTo({left, top + ky}, {left + kx, top}, {left + rx, top});
    close();
}

void Path::addEllipse(Point centre, double radiusX, double radiusY) {
    const double kx = radiusX * kQuarterArc;
    const double ky = radiusY * kQuarterArc;
    const auto [x, y] = centre;
    moveTo({x + radiusX, y});
    cubicTo({x + radiusX, y + ky}, {x + kx, y + radiusY}, {x, y + radiusY});
    cubicTo({x - kx, y + radiusY}, {x - radiusX, y + ky}, {x - radiusX, y});
    cubicTo({x - radiusX, y - ky}, {x - kx, y - radiusY}, {x, y - radiusY});
    cubicTo({x + kx, y - radiusY}, {x + radiusX, y - ky}, {x + radiusX, y});
    close();
}

void Path::addStar(Point centre, int points, double radius1, double radius2, double rotationDegrees) {
    const double start = rotationDegrees * kPi / 180.0;
    for (int i = 0; i < 2 * points; ++i) {
        const double angle = start + kPi * i / points;
        const double radius = i % 2 == 0 ? radius1 : radius2;
        const Point corner = {centre.x + radius * std::sin(angle), centre.y - radius * std::cos(angle)};
        i == 0 ? moveTo(corner) : lineTo(corner);
    }
    close();
}

void Path::append(const Path& other, const Transform& transform) {
    verbs_.insert(verbs_.end(), other.verbs_.begin(), other.verbs_.end());
    for (const Point p : other.points_) { // without reserve(), which would copy all before for each glyph of a text
        points_.push_back(transform.apply(p));
    }
    start_ = transform.apply(other.start_);
    current_ = transform.apply(other.current_);
    open_ = other.open_;
}

void Path::clear() {
    verbs_.clear();
    points_.clear();
    start_ = current_ = {};
    open_ = false;
}

Rect Path::bounds() const {
    Extent extent;
    const Point* next = points_.data();
    Point at;
    Point start;
    for (const Verb verb : verbs_) {
        switch (verb) {
        case Verb::move:
            start = at = *next++;
            extent.include(at);
            break;
        case Verb::line:
            at = *next++;
            extent.include(at);
            break;
        case Verb::quad:
            includeCubic(extent, at, towards(at, next[0], 2.0 / 3.0), towards(next[1], next[0], 2.0 / 3.0),
                         next[1]);
            at = next[1];
            next += 2;
            break;
        case Verb::cubic:
            includeCubic(extent, at, next[0], next[1], next[2]);
            at = next[2];
            next += 3;
            break;
        case Verb::close:
            at = start;
            break;
        }
    }
    if (!(extent.left <= extent.right)) {
        return {};
    }
    return {extent.left, extent.top, extent.right - extent.left, extent.bottom - extent.top};
}

} // namespace Drawing
