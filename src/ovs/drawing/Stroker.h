// Turns lines into the outlines of pen strokes: width, caps, joints, dashes.
#pragma once

#include "drawing/Effort.h"
#include "drawing/Paint.h"
#include "drawing/Path.h"

#include <cstddef>
#include <vector>

namespace Drawing {

// Straight lines, contour after contour. A sink for flatten(). Ends in an EffortError rather than in the machine's
// memory.
struct Polylines {
    struct Contour {
        std::size_t first = 0;
        std::size_t count = 0;
        bool closed = false;
    };

    std::vector<Point> points;
    std::vector<bool> turns; // whether a point is on a curve that goes on: no corner, whatever the angle
    std::vector<Contour> contours;

    void moveTo(Point p) {
        contours.push_back({points.size(), 0, false});
        add(p);
    }
    void lineTo(Point p) { add(p); }
    void turnTo(Point p) { add(p, true); }
    void smooth() { turns.back() = true; }
    void smoothStart() { turns[contours.back().first] = true; }
    void close() { contours.back().closed = true; }
    void add(Point p, bool turn = false) {
        if (points.size() == Effort::kMostPoints) {
            throw EffortError();
        }
        points.push_back(p);
        turns.push_back(turn);
        ++contours.back().count;
    }
    void clear() {
        points.clear();
        turns.clear();
        contours.clear();
    }
};

// Appends closed contours to `outline`, to be filled non-zero. Round caps and joints stray up to `tolerance`.
void strokeOutline(const Polylines& lines, const Pen& pen, double tolerance, Polylines& outline);

// The lines cut into dashes. Lines that would make more dashes than anybody can see stay whole.
void cutIntoDashes(const Polylines& lines, const Pen& pen, Polylines& dashes);

} // namespace Drawing
