#include "drawing/PathData.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>

namespace {

using namespace Drawing;

double rounded(double value) {
    const double result = std::round(value * 1000.0) / 1000.0;
    return result == 0.0 ? 0.0 : result; // not -0
}

// "M1,2 L3,4 Z", numbers to three places.
std::string printed(const Path& path) {
    std::ostringstream out;
    const Point* next = path.points().data();
    for (const Path::Verb verb : path.verbs()) {
        const auto index = static_cast<std::size_t>(verb);
        out << (out.str().empty() ? "" : " ") << "MLQCZ"[index];
        for (int i = 0; i < "\1\1\2\3\0"[index]; ++i, ++next) {
            out << (i > 0 ? " " : "") << rounded(next->x) << ',' << rounded(next->y);
        }
    }
    return out.str();
}

std::string read(const std::string& text) {
    try {
        return printed(parsePathData(text));
    } catch (const PathDataError& error) {
        return error.what();
    }
}

TEST(PathData, IsRead) {
    const struct {
        const char* text;
        const char* expected;
    } rows[] = {
        {"", ""},
        {" \t\n", ""},
        {"M1 2", "M1,2"},
        {"M1,2L3,4", "M1,2 L3,4"},
        {"m1 2l3 4", "M1,2 L4,6"},
        {"M1 2 3 4 5 6", "M1,2 L3,4 L5,6"},
        {"m1 2 3 4 5 6z", "M1,2 L4,6 L9,12 Z"},
        {"M0 0H5 6V7 8h1v-1", "M0,0 L5,0 L6,0 L6,7 L6,8 L7,8 L7,7"},
        {"M0,0C1,2 3,4 5,6S7,8 9,10s1-1 2-2", "M0,0 C1,2 3,4 5,6 C7,8 7,8 9,10 C11,12 10,9 11,8"},
        {"M1 1S2 2 3 3", "M1,1 C1,1 2,2 3,3"},          // nothing to mirror
        {"M1 1Q2 3 4 1S5 5 6 1", "M1,1 Q2,3 4,1 C4,1 5,5 6,1"}, // not at another kind of curve
        {"M0 0Q1 2 3 0T6 0t3 0", "M0,0 Q1,2 3,0 Q5,-2 6,0 Q7,2 9,0"},
        {"M1 1T3 3", "M1,1 Q1,1 3,3"},
        {"m176-19q0,6-9,14t-18,8", "M176,-19 Q176,-13 167,-5 Q158,3 149,3"},
        {"M.5.5-.5-.5", "M0.5,0.5 L-0.5,-0.5"},
        {"M1e1 1E+1L1e-1-1.e1", "M10,10 L0.1,-10"},
        {"M+1+2", "M1,2"},
        {"M1 2zl1 1", "M1,2 Z M1,2 L2,3"},
        {"M1 1ZM2 2Z", "M1,1 Z M2,2 Z"},
        {"M0 0L1 1zm5 5l1 0", "M0,0 L1,1 Z M5,5 L6,5"},
        {"M0 0A0 5 0 0 1 4 4", "M0,0 L4,4"}, // no radius: a line
        {"M0 0A5 5 0 0 1 0 0", "M0,0"},      // to where it is: nothing
        {"M1 0A1 1 0 0 1 0 1", "M1,0 C1,0.552 0.552,1 0,1"},
        {"M1 0A1 1 0 00 0 1", "M1,0 C0.448,0 0,0.448 0,1"},
        {"M1 0a1 1 0 11-1-1", "M1,0 C1,0.552 0.552,1 0,1 C-0.552,1 -1,0.552 -1,0 C-1,-0.552 -0.552,-1 0,-1"},
        {"M0 0a1,1,0,012,0", "M0,0 C0,-0.552 0.448,-1 1,-1 C1.552,-1 2,-0.552 2,0"},
        {"M0 0A1 1 90 0 1 4 0", "M0,0 C0,-1.105 0.895,-2 2,-2 C3.105,-2 4,-1.105 4,0"}, // too small: grows
        {"M0 0a1 1 0 0112 0 .5.5 0 01.5.5",
         "M0,0 C0,-3.314 2.686,-6 6,-6 C9.314,-6 12,-3.314 12,0 C12.276,0 12.5,0.224 12.5,0.5"},
        {"M 10 20 30.5 40 50 1e1", "M10,20 L30.5,40 L50,10"},
        {"M1e-999 0", "M0,0"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(read(row.text), row.expected) << row.text;
    }
}

TEST(PathData, SaysWhatIsWrong) {
    const struct {
        const char* text;
        const char* error;
    } rows[] = {
        {"M", "Invalid M syntax in svg path data"},
        {"M1", "Invalid M syntax in svg path data"},
        {"m1,", "Invalid M syntax in svg path data"},
        {"M1,2,", "Invalid M syntax in svg path data"},
        {"M1,,2", "Invalid M syntax in svg path data"},
        {"M,1 2", "Invalid M syntax in svg path data"},
        {"M1 2 3", "Invalid M syntax in svg path data"},
        {"M1e999 2", "Invalid M syntax in svg path data"},
        {"M- 1", "Invalid M syntax in svg path data"},
        {"M0 0L1", "Invalid L syntax in svg path data"},
        {"M0 0l", "Invalid L syntax in svg path data"},
        {"M0 0H", "Invalid H syntax in svg path data"},
        {"M0 0v,1", "Invalid V syntax in svg path data"},
        {"M0 0C1 2 3 4 5", "Invalid C syntax in svg path data"},
        {"M0 0S1 2 3", "Invalid S syntax in svg path data"},
        {"M0 0Q1 2 3", "Invalid Q syntax in svg path data"},
        {"M0 0T1", "Invalid T syntax in svg path data"},
        {"M0 0A1 1 0 2 0 1 1", "Invalid A syntax in svg path data"},
        {"M0 0A1 1 0 0", "Invalid A syntax in svg path data"},
        {"M0 0X", "Invalid command in svg path data"},
        {"M0 0Z1 1", "Invalid command in svg path data"},
        {"L1 1", "Invalid command in svg path data"},
        {"1 2", "Invalid command in svg path data"},
        {"M0 0 nan", "Invalid command in svg path data"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(read(row.text), row.error) << row.text;
    }
}

TEST(Path, ShapesAreWhatTheirNumbersSay) {
    Path star;
    star.addStar({10, 10}, 2, 4, 1, 0);
    EXPECT_EQ(printed(star), "M10,6 L11,10 L10,14 L9,10 Z");
    Path turned;
    turned.addStar({0, 0}, 1, 4, 4, 90);
    EXPECT_EQ(printed(turned), "M4,0 L-4,0 Z");
    Path rounded;
    rounded.addRoundedRect({0, 0, 10, 4}, 100, 1);
    EXPECT_EQ(printed(rounded).substr(0, 12), "M5,0 L5,0 C7");
    Path square;
    square.addRoundedRect({1, 2, 3, 4}, 0, 5);
    EXPECT_EQ(printed(square), "M1,2 L4,2 L4,6 L1,6 Z");
}

// Against many points of the curve.
TEST(Path, BoundsHoldTheCurveAndNotItsControls) {
    const char* const paths[] = {"M0 0C0 30 30 30 30 0", "M0 0C100 0-100 50 10 50", "M5 5Q20-30 35 5T60 5",
                                 "M0 0a20 10 30 1 1 5 5", "M3 3", "M1 2H9V4z"};
    for (const char* const text : paths) {
        SCOPED_TRACE(text);
        const Path path = parsePathData(text);
        double left = INFINITY, top = INFINITY, right = -INFINITY, bottom = -INFINITY;
        const auto take = [&](double x, double y) {
            left = std::min(left, x), right = std::max(right, x);
            top = std::min(top, y), bottom = std::max(bottom, y);
        };
        const Point* next = path.points().data();
        Point at;
        for (const Path::Verb verb : path.verbs()) {
            const int count = "\1\1\2\3\0"[static_cast<std::size_t>(verb)];
            for (int i = 0; i <= 5000 && count > 0; ++i) {
                const double t = i / 5000.0;
                const double s = 1.0 - t;
                if (count == 1) {
                    take(next[0].x, next[0].y);
                } else if (count == 2) {
                    take(s * s * at.x + 2 * s * t * next[0].x + t * t * next[1].x,
                         s * s * at.y + 2 * s * t * next[0].y + t * t * next[1].y);
                } else {
                    take(s * s * s * at.x + 3 * s * s * t * next[0].x + 3 * s * t * t * next[1].x +
                             t * t * t * next[2].x,
                         s * s * s * at.y + 3 * s * s * t * next[0].y + 3 * s * t * t * next[1].y +
                             t * t * t * next[2].y);
                }
            }
            next += count;
            at = count > 0 ? next[-1] : at;
        }
        const Rect bounds = path.bounds();
        EXPECT_NEAR(bounds.x, left, 1e-3);
        EXPECT_NEAR(bounds.y, top, 1e-3);
        EXPECT_NEAR(bounds.right(), right, 1e-3);
        EXPECT_NEAR(bounds.bottom(), bottom, 1e-3);
    }
}

} // namespace
