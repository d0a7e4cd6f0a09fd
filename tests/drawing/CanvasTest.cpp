#include "drawing/Canvas.h"
#include "drawing/PathData.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

namespace {

using namespace Drawing;

constexpr Colour kRed = 0xFFFF0000;

Path pathOf(const char* data) {
    return parsePathData(data);
}

int alphaAt(Surface& surface, int x, int y) {
    return static_cast<int>(alphaOf(surface.view().at(x, y)));
}

double totalAlpha(Surface& surface) {
    double total = 0.0;
    for (int y = 0; y < surface.height(); ++y) {
        for (int x = 0; x < surface.width(); ++x) {
            total += alphaAt(surface, x, y) / 255.0;
        }
    }
    return total;
}

// How much of a pixel lies inside a polygon, by many points in it.
class PointInPolygon {
public:
    explicit PointInPolygon(std::vector<Point> corners) : corners_(std::move(corners)) {}

    double coverage(int x, int y, FillRule rule) const {
        constexpr int kSide = 16;
        int inside = 0;
        for (int i = 0; i < kSide * kSide; ++i) {
            const int winding = windingAt(x + (i % kSide + 0.5) / kSide, y + (i / kSide + 0.5) / kSide);
            inside += rule == FillRule::nonZero ? winding != 0 : winding % 2 != 0;
        }
        return static_cast<double>(inside) / (kSide * kSide);
    }

private:
    int windingAt(double x, double y) const {
        int winding = 0;
        for (std::size_t i = 0; i < corners_.size(); ++i) {
            const Point& a = corners_[i];
            const Point& b = corners_[(i + 1) % corners_.size()];
            if ((a.y <= y) != (b.y <= y) && a.x + (y - a.y) / (b.y - a.y) * (b.x - a.x) > x) {
                winding += a.y < b.y ? 1 : -1;
            }
        }
        return winding;
    }

    std::vector<Point> corners_;
};

TEST(Canvas, CoversWhatThePolygonCovers) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(-15.0, 35.0); // the surface is 20 x 20
    for (int round = 0; round < 40; ++round) {
        std::vector<Point> corners;
        Path path;
        for (int i = 0; i < 3 + round % 3; ++i) {
            corners.push_back({place(random), place(random)});
            i == 0 ? path.moveTo(corners.back()) : path.lineTo(corners.back());
        }
        const FillRule rule = round % 2 == 0 ? FillRule::nonZero : FillRule::evenOdd;
        Surface surface(20, 20);
        Canvas(surface.view()).fill(path, {kBlack}, rule, {});
        const PointInPolygon expected(corners);
        double error = 0.0;
        for (int y = 0; y < 20; ++y) {
            for (int x = 0; x < 20; ++x) {
                const double difference =
                    std::abs(alphaAt(surface, x, y) / 255.0 - expected.coverage(x, y, rule));
                // Where two edges cross in a pixel, its coverage is not exact.
                EXPECT_LT(difference, 0.6) << round << ": " << x << ',' << y;
                error += difference;
            }
        }
        EXPECT_LT(error / 400, 0.008) << round;
    }
}

TEST(Canvas, CurvesEncloseTheirArea) {
    const double pi = std::acos(-1.0);
    for (const double radius : {3.0, 17.0, 45.0}) {
        Surface surface(100, 100);
        Path circle;
        circle.addEllipse({50.2, 49.7}, radius, radius / 2);
        Canvas(surface.view()).fill(circle, {kRed}, FillRule::nonZero, {});
        EXPECT_NEAR(totalAlpha(surface) / (pi * radius * radius / 2), 1.0, 0.015) << radius;
    }
}

// Lengths and widths that are easy to multiply.
TEST(Canvas, StrokesAreAsLargeAsThePenMakesThem) {
    const double pi = std::acos(-1.0);
    struct Row {
        const char* path;
        Pen pen;
        double area;
    };
    const auto pen = [](double width, Caps caps, Joints joints, double dash = 0, double gap = 0,
                        double offset = 0) {
        return Pen{{kBlack}, width, caps, joints, 4.0, dash, gap, offset};
    };
    const Row rows[] = {
        {"M10 50H60", pen(4, Caps::butt, Joints::miter), 200},
        {"M10 50H60", pen(4, Caps::square, Joints::miter), 216},
        {"M10 50H60", pen(4, Caps::round, Joints::miter), 200 + 4 * pi},
        {"M10 50H60", pen(0, Caps::round, Joints::miter), 0},
        {"M10 50H60V80", pen(4, Caps::butt, Joints::miter), 200 + 120 - 4 + 4},
        {"M10 50H60V80", pen(4, Caps::butt, Joints::bevel), 200 + 120 - 4 + 2},
        {"M10 50H60V80", pen(4, Caps::butt, Joints::curve), 200 + 120 - 4 + pi},
        {"M20 20H60V60H20Z", pen(4, Caps::butt, Joints::miter), 44 * 44 - 36 * 36},
        {"M10 50H60Z", pen(4, Caps::square, Joints::miter), 200}, // there and back: no end that had a cap
        {"M10 50H60Z", pen(4, Caps::butt, Joints::curve), 200 + 4 * pi},
        {"M50 50H50", pen(8, Caps::round, Joints::miter), 16 * pi},
        {"M50 50Z", pen(8, Caps::square, Joints::miter), 64},
        {"M50 50H50", pen(8, Caps::butt, Joints::miter), 0},
        {"M50 50", pen(8, Caps::round, Joints::miter), 0},
        {"M10 50H70", pen(4, Caps::butt, Joints::miter, 10, 10), 120},
        {"M10 50H70", pen(4, Caps::butt, Joints::miter, 10, 20, 5), 80},
        {"M10 50H70", pen(4, Caps::butt, Joints::miter, 10, 20, -10), 80},
        {"M10 50H70", pen(4, Caps::round, Joints::miter, 0, 20, -10), 3 * 4 * pi},
        {"M10 50H69", pen(4, Caps::round, Joints::miter, 0, 20), 3 * 4 * pi}, // the first where the line begins
        {"M10 50H69", pen(4, Caps::butt, Joints::miter, 0, 20), 0},
        {"M20 20H60V60H20Z", pen(2, Caps::butt, Joints::miter, 40, 40), 160},
        {"M20 20H60V60H20Z", pen(16, Caps::butt, Joints::miter, 40, 40, 20), 1280}, // joined where it begins
        {"M20 20H60V60H20Z", pen(16, Caps::butt, Joints::miter, 400, 40), 56 * 56 - 24 * 24},
        // The outside of a curve is round, whatever the joints are, within pieces and from one to the next.
        {"M50 49A1 1 0 0 1 50 51A1 1 0 0 1 50 49Z", pen(60, Caps::butt, Joints::bevel), 31 * 31 * pi},
        {"M50 49A1 1 0 0 1 50 51A1 1 0 0 1 50 49Z", pen(60, Caps::butt, Joints::miter), 31 * 31 * pi},
        {"M10 50H70", pen(4, Caps::butt, Joints::miter, 10, 0), 240},
        {"M10 50H70", pen(4, Caps::butt, Joints::miter, 1e-9, 1e-9), 240}, // too fine to be seen
    };
    for (const Row& row : rows) {
        Surface surface(100, 100);
        Canvas(surface.view()).stroke(pathOf(row.path), row.pen, {});
        EXPECT_NEAR(totalAlpha(surface), row.area, 0.2 + 0.02 * row.area) << row.path << " area " << row.area;
    }
    // A spike is cut when it is longer than the limit: 2 / sin(angle / 2) against the limit times the width.
    for (const double limit : {2.0, 8.0}) {
        Surface surface(100, 100);
        Canvas(surface.view()).stroke(pathOf("M10 40L60 50 10 60"), {{kBlack}, 4, Caps::butt, Joints::miter, limit}, {});
        EXPECT_EQ(alphaAt(surface, 66, 50) > 0, limit > 5.1) << limit;
    }
    // A dash without length is turned as the line is: the corners of its square lie straight above and below.
    Surface square(100, 100);
    Canvas(square.view()).stroke(pathOf("M10 10L80 80"), pen(20, Caps::square, Joints::miter, 0, 200, -40 * std::sqrt(2.0)), {});
    EXPECT_NEAR(totalAlpha(square), 400, 2);
    EXPECT_EQ(alphaAt(square, 50, 38), 255U);
    EXPECT_EQ(alphaAt(square, 41, 41), 0U);
    // One far wider than the surface still covers what it should: half of this one.
    Surface wide(100, 100);
    Canvas(wide.view()).stroke(pathOf("M50 50L80 80"), pen(1e9, Caps::butt, Joints::miter), {});
    Canvas(wide.view()).stroke(pathOf("M80 80L250 250"), pen(1e9, Caps::butt, Joints::miter), {});
    EXPECT_NEAR(totalAlpha(wide), 5000, 10);
    // The pen is bent as the shape is.
    Surface surface(100, 100);
    Canvas(surface.view()).stroke(pathOf("M1 5H9"), {{kBlack}, 2}, {.transform = Transform::scale(10, 2)});
    EXPECT_NEAR(totalAlpha(surface), 80 * 4, 0.5);
}

std::shared_ptr<const GradientTable> stops(std::vector<GradientStop> list) {
    return std::make_shared<const GradientTable>(std::move(list));
}

void expectNear(Pixel actual, double alpha, double red, double green, double blue, double tolerance) {
    EXPECT_NEAR(alphaOf(actual), alpha, tolerance);
    EXPECT_NEAR(redOf(actual), red, tolerance);
    EXPECT_NEAR(greenOf(actual), green, tolerance);
    EXPECT_NEAR(blueOf(actual), blue, tolerance);
}

TEST(Canvas, LinearGradientsRunFromStartToEnd) {
    Surface surface(120, 20);
    const Paint paint{LinearGradient{{10, 0}, {110, 0}, stops({{0, kRed}, {1, 0xFF0000FF}})}};
    Canvas(surface.view()).fill(pathOf("M0 0H120V20H0Z"), paint, FillRule::nonZero, {});
    for (int x = 0; x < 120; ++x) {
        const double t = std::clamp((x + 0.5 - 10) / 100, 0.0, 1.0);
        expectNear(surface.view().at(x, 7), 255, 255 * (1 - t), 0, 255 * t, 2.0);
    }
}

TEST(Canvas, RadialGradientsHaveTwoRadiiAndFollowTheTransform) {
    Surface surface(100, 100);
    const Paint paint{RadialGradient{{25, 50}, 10, 40, stops({{0, kTransparent}, {0.5, kRed}, {1, kBlack}})}};
    const DrawOptions options{.transform = Transform::scale(2, 1)};
    Canvas(surface.view()).fill(pathOf("M0 0H50V100H0Z"), paint, FillRule::nonZero, options);
    for (const auto& [x, y] : {std::pair{50, 50}, {65, 50}, {50, 85}, {40, 30}, {58, 66}, {3, 3}}) {
        const double t = std::min(1.0, std::hypot((x + 0.5 - 50) / 20, (y + 0.5 - 50) / 40));
        const double alpha = std::min(1.0, 2 * t) * 255;
        expectNear(surface.view().at(x, y), alpha, t < 0.5 ? alpha : 255 * (2 - 2 * t), 0, 0, 5.0);
    }
}

TEST(Canvas, RelativePaintsSpanTheShape) {
    Paint paint{LinearGradient{{0, 0}, {0, 1}, stops({{0, kBlack}, {1, 0xFFFFFFFF}})}};
    paint.relative = true;
    Surface surface(60, 60);
    Canvas canvas(surface.view());
    canvas.fill(pathOf("M10 20H50V40H10Z"), paint, FillRule::nonZero, {});
    expectNear(surface.view().at(30, 20), 255, 6, 6, 6, 3);
    expectNear(surface.view().at(30, 39), 255, 249, 249, 249, 3);
    // A line across has no height to span, and is painted nevertheless.
    Paint across{LinearGradient{{0, 0}, {1, 0}, stops({{0, kBlack}, {1, 0xFFFFFFFF}})}, 1.0, true};
    canvas.stroke(pathOf("M10 50H50"), {across, 4}, {});
    expectNear(surface.view().at(30, 50), 255, 130, 130, 130, 5);
}

TEST(Canvas, PatternsRepeatInBothDirections) {
    auto tile = std::make_shared<Surface>(2, 2);
    tile->view().at(0, 0) = kRed;
    tile->view().at(1, 1) = 0xFF0000FF;
    const Paint paint{Pattern{tile, {3, 0, 2, 2}}, 0.5};
    Surface surface(9, 9);
    Canvas(surface.view()).fill(pathOf("M0 0H9V9H0Z"), paint, FillRule::nonZero, {});
    for (int y = 0; y < 9; ++y) {
        for (int x = 0; x < 9; ++x) {
            const Pixel expected = (x + 1) % 2 != y % 2 ? 0 : y % 2 == 0 ? 0x80800000 : 0x80000080;
            EXPECT_EQ(surface.view().at(x, y), expected) << x << ',' << y;
        }
    }
}

TEST(Canvas, ImagesAreScaledClippedAndFaded) {
    Surface image(4, 4);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x) {
            image.view().at(x, y) = x < 2 ? kRed : 0xFF0000FF;
        }
    }
    const ConstSurfaceView pixels = static_cast<const Surface&>(image).view();
    Surface surface(20, 20);
    Canvas canvas(surface.view());
    const Rect clip = {0, 4, 20, 20};
    canvas.drawImage(pixels, {2, 2, 16, 16}, 1.0, &clip, {});
    EXPECT_EQ(alphaAt(surface, 4, 3), 0);
    EXPECT_EQ(surface.view().at(4, 4), kRed);
    EXPECT_EQ(surface.view().at(16, 17), 0xFF0000FF);
    EXPECT_EQ(alphaAt(surface, 16, 18), 0);
    // Much smaller: the mean of all, not one pixel of many.
    Surface small(1, 1);
    Canvas(small.view()).drawImage(pixels, {0, 0, 1, 1}, 0.5, nullptr, {});
    expectNear(small.view().at(0, 0), 128, 64, 0, 64, 1);
    // Pixel on pixel: unchanged.
    Surface same(4, 4);
    Canvas(same.view()).drawImage(pixels, {0, 0, 4, 4}, 1.0, nullptr, {});
    for (int x = 0; x < 4; ++x) {
        EXPECT_EQ(same.view().at(x, 1), image.view().at(x, 1));
    }
}

TEST(Canvas, MasksLimitWhatIsDrawnAndWiped) {
    Surface drawing(4, 1);
    const std::array<unsigned, 4> alphas = {0, 64, 128, 255};
    for (int x = 0; x < 4; ++x) {
        drawing.view().at(x, 0) = pixelOf(alphas[static_cast<std::size_t>(x)], 0, 0, 0);
    }
    const Mask mask(drawing.view(), false, nullptr);
    const Mask inverted(drawing.view(), true, nullptr);
    const Mask both(drawing.view(), true, &mask);
    Surface filled(4, 1), wiped(4, 1), limited(4, 1);
    const Path all = pathOf("M0 0H4V1H0Z");
    Canvas(filled.view()).fill(all, {kRed}, FillRule::nonZero, {.mask = &mask});
    Canvas(limited.view()).fill(all, {kRed}, FillRule::nonZero, {.mask = &both});
    Canvas wiping(wiped.view());
    wiping.wipe({kRed}, {});
    wiping.wipe({kTransparent}, {.mask = &inverted});
    for (int x = 0; x < 4; ++x) {
        const unsigned alpha = alphas[static_cast<std::size_t>(x)];
        EXPECT_EQ(filled.view().at(x, 0), pixelOf(alpha, alpha, 0, 0));
        EXPECT_EQ(wiped.view().at(x, 0), pixelOf(alpha, alpha, 0, 0));
        EXPECT_EQ(alphaOf(limited.view().at(x, 0)), multiply255(alpha, 255 - alpha));
    }
}

TEST(Canvas, GammaBendsCoverageAndOpacityDoesNot) {
    for (const double gamma : {0.5, 1.0, 2.0}) {
        Surface surface(2, 1);
        Canvas(surface.view()).fill(pathOf("M0 0H1.5V1H0Z"), {kBlack, 0.5}, FillRule::nonZero, {.gamma = gamma});
        EXPECT_EQ(alphaAt(surface, 0, 0), 128);
        EXPECT_NEAR(alphaAt(surface, 1, 0), 128 * std::pow(0.5, gamma), 1.5) << gamma;
    }
}

TEST(Canvas, FinerCurvesHaveMoreCorners) {
    const auto roughness = [](double quality) {
        Surface surface(200, 200);
        Path circle;
        circle.addEllipse({100, 100}, 90, 90);
        Canvas(surface.view()).fill(circle, {kBlack}, FillRule::nonZero, {.curveQuality = quality});
        return std::abs(totalAlpha(surface) - std::acos(-1.0) * 8100);
    };
    EXPECT_GT(roughness(0.01), 10 * roughness(1.0));
}

// Each of these costs about ten thousand steps, and draws when there are enough of them.
TEST(Canvas, StopsWhenItsEffortIsSpent) {
    Path square = pathOf("M0 0H50V50H0Z");
    Path curves; // in sight or not
    for (int i = 0; i < 10; ++i) {
        curves.moveTo({-1e4, 0});
        curves.cubicTo({-2e4, 1e4}, {-3e4, -1e4}, {-1e4, 1e3});
    }
    Surface tile(100, 100);
    const Paint small{Pattern{std::make_shared<const Surface>(100, 100), {0, 0, 1, 1}}};
    const Pen dashed{{kBlack}, 1, Caps::round, Joints::miter, 4, 0.1, 0.1};
    const std::function<void(Canvas&)> drawings[] = {
        [&](Canvas& c) { c.fill(curves, {kBlack}, FillRule::nonZero, {}); },
        [&](Canvas& c) { c.stroke(square, dashed, {}); },
        [&](Canvas& c) { c.fill(pathOf("M0 0H1V1H0Z"), small, FillRule::nonZero, {}); },
        [&](Canvas& c) { c.drawImage(tile.view(), {0, 0, 1, 1}, 1, nullptr, {}); },
        [&](Canvas& c) {
            for (int i = 0; i < 4; ++i) {
                c.wipe({kRed}, {});
                c.fill(square, {kBlack}, FillRule::nonZero, {});
            }
        },
    };
    for (const auto& draw : drawings) {
        Surface surface(50, 50);
        Effort little(4000);
        Effort enough(4'000'000);
        Canvas weak(surface.view(), &little);
        Canvas strong(surface.view(), &enough);
        EXPECT_THROW(draw(weak), EffortError) << &draw - drawings;
        EXPECT_NO_THROW(draw(strong)) << &draw - drawings;
    }
    // Whatever it may cost: an outline that the memory would not hold.
    Surface surface(50, 50);
    Path star;
    star.addStar({25, 25}, 10000, 20, 5, 0);
    EXPECT_THROW(Canvas(surface.view()).stroke(star, {{kBlack}, 1e5, Caps::butt, Joints::curve}, {}), EffortError);
}

// Nothing a document can name may do harm, or hide what is in sight.
TEST(Canvas, TakesAnyCoordinates) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    const double values[] = {0.0, -1.0, 1e5, -1e9, 1e30, 1e308, -1e308, 5e-324, nan, infinity, -infinity};
    const Paint paints[] = {{kRed},
                            {LinearGradient{{0, 0}, {1e-200, nan}, stops({{0, kRed}, {1, kBlack}})}},
                            {RadialGradient{{1e300, 0}, infinity, 1e-300, stops({{0, kRed}})}},
                            {LinearGradient{{0, 0}, {1, 1e-9}, stops({{0, kRed}, {1, 0}})}, 1.0, true}};
    Surface surface(16, 16);
    Canvas canvas(surface.view());
    for (const double a : values) {
        for (const double b : values) {
            Path path;
            path.moveTo({a, b});
            path.cubicTo({b, a}, {a, -b}, {3, a});
            path.arcTo(a, b, a, true, false, {b, 5});
            path.quadTo({-a, b}, {a, a});
            path.close();
            for (const Paint& paint : paints) {
                const DrawOptions plain;
                const DrawOptions bent{.transform = {a, 1, 0, b, b, a}, .gamma = 99.0, .curveQuality = 99.0};
                canvas.fill(path, paint, FillRule::evenOdd, plain);
                canvas.fill(path, paint, FillRule::nonZero, bent);
                canvas.stroke(path, {paint, 3, Caps::round, Joints::curve, 4, 1, 1, a}, plain);
                canvas.stroke(path, {paint, std::abs(a), Caps::square, Joints::miter, 4, 0, 0, 0}, bent);
            }
        }
    }
    const double far = 1e12;
    Path frame; // a hole far around, and the inside
    frame.addRect({-far, -far, 2 * far, 2 * far});
    canvas.wipe({kTransparent}, {});
    canvas.fill(frame, {kRed}, FillRule::nonZero, {});
    EXPECT_EQ(totalAlpha(surface), 256);
}

// AGG draws very long lines in halves, and holds only so many edges.
TEST(Canvas, WideSurfacesAndManyEdgesAreDrawnWhole) {
    Surface wide(40000, 2);
    Canvas(wide.view()).fill(pathOf("M0 0L40000 0.5V2H0Z"), {kBlack}, FillRule::nonZero, {});
    EXPECT_NEAR(alphaAt(wide, 20000, 0), 191, 2);
    EXPECT_EQ(alphaAt(wide, 20000, 1), 255);

    constexpr int kSide = 2100; // more edge pixels than are held at once
    Surface surface(kSide, kSide);
    Path comb;
    for (int x = 0; x < kSide; ++x) {
        comb.addRect({x + 0.25, 0, 0.5, kSide});
    }
    Canvas canvas(surface.view());
    canvas.fill(comb, {kBlack}, FillRule::nonZero, {});
    for (const int y : {0, 1049, 1050, 2099}) {
        EXPECT_NEAR(alphaAt(surface, y, y), 128, 1) << y;
    }
    canvas.wipe({kTransparent}, {});
    canvas.fill(pathOf("M0 0H1V1H0Z"), {kRed}, FillRule::nonZero, {});
    EXPECT_EQ(totalAlpha(surface), 1);
}

} // namespace
