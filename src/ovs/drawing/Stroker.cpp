#include "drawing/Stroker.h"

#include <agg_math_stroke.h>
#include <agg_vertex_sequence.h>

#include <algorithm>
#include <cmath>

namespace Drawing {

namespace {

// A stroke of one path on the largest surface has about as many visible dashes.
constexpr double kMostDashes = 100'000.0;

// math_stroke strays so far at a scale of 1.
constexpr double kFinestStep = 0.125;

// Wider strokes, in the units of that scale, are rounded off no finer.
constexpr double kWidestFineStroke = 1e5;

// What a dash without length is long, of the width of the pen: a direction, and nothing to be seen.
constexpr double kLittle = 1e-6;

// Beyond, sums of squares would leave the range of numbers.
constexpr double kWidest = 1e9;
constexpr double kFarthest = 1e12;

// What math_stroke hands its points to.
struct OutlineSink {
    using value_type = agg::point_d;
    Polylines& outline;

    void add(const agg::point_d& p) { outline.add({p.x, p.y}); }
    void remove_all() {} // the points of a joint are added to those before
};

class Stroker {
public:
    Stroker(const Pen& pen, double tolerance, Polylines& outline)
        : caps_(pen.caps), joints_(pen.joints == Joints::bevel   ? agg::bevel_join
                                   : pen.joints == Joints::curve ? agg::round_join
                                                                 : agg::miter_join_revert),
          sink_{outline} {
        math_.width(std::min(pen.width, kWidest));
        math_.inner_join(agg::inner_jag);
        math_.miter_limit(pen.miterLimit);
        const double finest = kWidestFineStroke / pen.width;
        math_.approximation_scale(std::max(1e-9, std::min(kFinestStep / tolerance, finest)));
    }

    void stroke(const Polylines& lines, const Polylines::Contour& contour) {
        const Point* const points = lines.points.data() + contour.first;
        const std::size_t count = contour.count;
        const bool closed = contour.closed;
        vertices_.clear();
        for (std::size_t i = 0; i < count; ++i) {
            add(points[i], lines.turns[contour.first + i]);
        }
        if (closed && vertices_.size() > 1) {
            auto& last = vertices_.back();
            if (!last(vertices_.front())) {
                vertices_.pop_back();
            }
        }
        if (vertices_.size() < 2) {
            if (!vertices_.empty() && (count > 1 || closed)) {
                strokePoint(points[0]);
            }
        } else if (closed && vertices_.size() > 2) {
            strokeClosed();
        } else {
            // Closed, a line there and back: it ends in joints, which a miter for a half turn would make endless.
            strokeOpen(!closed ? capOf(caps_) : joints_ == agg::round_join ? agg::round_cap : agg::butt_cap);
        }
    }

private:
    static agg::line_cap_e capOf(Caps caps) {
        return caps == Caps::butt ? agg::butt_cap : caps == Caps::square ? agg::square_cap : agg::round_cap;
    }

    struct Vertex : agg::vertex_dist {
        bool turn;
    };

    // A vertex knows the distance to the next one; two in the same place are one.
    void add(Point p, bool turn) {
        if (!(std::abs(p.x) < kFarthest && std::abs(p.y) < kFarthest)) {
            return;
        }
        const Vertex vertex{{p.x, p.y}, turn};
        if (!vertices_.empty() && !vertices_.back()(vertex)) {
            vertices_.back().turn = vertices_.back().turn && turn;
            return;
        }
        vertices_.push_back(vertex);
    }

    void join(std::size_t before, std::size_t at, std::size_t after, double lengthBefore, double lengthAfter) {
        math_.line_join(vertices_[at].turn ? agg::round_join : joints_);
        math_.calc_join(sink_, vertices_[before], vertices_[at], vertices_[after], lengthBefore, lengthAfter);
    }

    void beginContour() { sink_.outline.contours.push_back({sink_.outline.points.size(), 0, true}); }

    void strokeClosed() {
        const std::size_t n = vertices_.size();
        beginContour();
        for (std::size_t i = 0; i < n; ++i) {
            const std::size_t before = (i + n - 1) % n;
            join(before, i, (i + 1) % n, vertices_[before].dist, vertices_[i].dist);
        }
        beginContour();
        for (std::size_t i = n; i-- > 0;) {
            const std::size_t before = (i + n - 1) % n;
            join((i + 1) % n, i, before, vertices_[i].dist, vertices_[before].dist);
        }
    }

    void strokeOpen(agg::line_cap_e cap) {
        const std::size_t n = vertices_.size();
        math_.line_cap(cap);
        beginContour();
        math_.calc_cap(sink_, vertices_[0], vertices_[1], vertices_[0].dist);
        for (std::size_t i = 1; i + 1 < n; ++i) {
            join(i - 1, i, i + 1, vertices_[i - 1].dist, vertices_[i].dist);
        }
        math_.calc_cap(sink_, vertices_[n - 1], vertices_[n - 2], vertices_[n - 2].dist);
        for (std::size_t i = n - 1; i-- > 1;) {
            join(i + 1, i, i - 1, vertices_[i].dist, vertices_[i - 1].dist);
        }
    }

    // A line without length shows its caps alone, as if it pointed right.
    void strokePoint(Point p) {
        if (caps_ == Caps::butt) {
            return;
        }
        math_.line_cap(capOf(caps_));
        const agg::vertex_dist left(p.x, p.y);
        const agg::vertex_dist right(p.x + 1.0, p.y);
        beginContour();
        math_.calc_cap(sink_, left, right, 1.0);
        const agg::vertex_dist back(p.x - 1.0, p.y);
        math_.calc_cap(sink_, left, back, 1.0);
    }

    Caps caps_;
    agg::line_join_e joints_;
    OutlineSink sink_;
    agg::math_stroke<OutlineSink> math_;
    std::vector<Vertex> vertices_;
};

double lengthOf(const Polylines& lines) {
    double total = 0.0;
    for (const auto& contour : lines.contours) {
        const Point* const p = lines.points.data() + contour.first;
        for (std::size_t i = 1; i < contour.count; ++i) {
            total += std::hypot(p[i].x - p[i - 1].x, p[i].y - p[i - 1].y);
        }
    }
    return total;
}

// Walks one contour; `on` alternates as dashes and gaps run out.
class Dasher {
public:
    Dasher(const Pen& pen, Polylines& dashes) : pen_(pen), dashes_(dashes) {}

    void cut(const Polylines& lines, const Polylines::Contour& contour) {
        const Point* const points = lines.points.data() + contour.first;
        const std::size_t count = contour.count;
        const std::size_t first = dashes_.contours.size();
        begin(points[0]);
        const bool beganOn = on_;
        for (std::size_t i = 1; i < count; ++i) {
            walk(points[i - 1], points[i], lines.turns[contour.first + i]);
        }
        if (contour.closed) {
            walk(points[count - 1], points[0], false);
            if (beganOn && on_) {
                joinEnds(first);
            }
        }
    }

private:
    // The dash that runs into the beginning of a closed line goes on as the first one.
    void joinEnds(std::size_t first) {
        if (first + 1 == dashes_.contours.size()) {
            dashes_.close();
            return;
        }
        Polylines::Contour& beginning = dashes_.contours[first];
        for (std::size_t i = 1; i < beginning.count; ++i) {
            const Point p = dashes_.points[beginning.first + i];
            dashes_.add(p, dashes_.turns[beginning.first + i]);
        }
        beginning.count = 0;
    }

    void begin(Point start) {
        const double period = pen_.dash + pen_.gap;
        double phase = std::fmod(pen_.dashOffset, period);
        phase = phase < 0.0 ? phase + period : phase;
        on_ = phase < pen_.dash || phase == 0.0; // a dash without length may begin here
        left_ = on_ ? pen_.dash - phase : period - phase;
        if (on_) {
            dashes_.moveTo(start);
        }
    }

    void walk(Point from, Point to, bool turn) {
        const double length = std::hypot(to.x - from.x, to.y - from.y);
        double done = 0.0;
        while (length - done > left_) {
            done += left_;
            const double part = done / length;
            const Point at = {from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part};
            if (!on_) {
                dashes_.moveTo(at);
            } else if (pen_.dash > 0.0) {
                dashes_.lineTo(at);
            } else { // its caps are turned as the line is
                const double little = kLittle * pen_.width / length;
                dashes_.lineTo({at.x + (to.x - from.x) * little, at.y + (to.y - from.y) * little});
            }
            on_ = !on_;
            left_ = on_ ? pen_.dash : pen_.gap;
        }
        left_ -= length - done;
        if (on_) {
            dashes_.add(to, turn);
        }
    }

    const Pen& pen_;
    Polylines& dashes_;
    bool on_ = true;
    double left_ = 0.0;
};

} // namespace

void strokeOutline(const Polylines& lines, const Pen& pen, double tolerance, Polylines& outline) {
    Stroker stroker(pen, tolerance, outline);
    for (const auto& contour : lines.contours) {
        stroker.stroke(lines, contour);
    }
}

void cutIntoDashes(const Polylines& lines, const Pen& pen, Polylines& dashes) {
    const double period = pen.dash + pen.gap;
    if (!(lengthOf(lines) / period < kMostDashes) || !std::isfinite(pen.dashOffset / period)) {
        dashes = lines;
        return;
    }
    Dasher dasher(pen, dashes);
    for (const auto& contour : lines.contours) {
        dasher.cut(lines, contour);
    }
}

} // namespace Drawing
