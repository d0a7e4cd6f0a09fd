#include "quilt/View.h"
#include "quilt/views/Rows.h"
#include "quilt/views/Views.h"

namespace Quilt {

namespace {

using namespace Rows;

constexpr Property kRectangle[] = {
    {"color", color, "", "Fills the bounds."},
    {"rounded", number, "0", "Radius of the corners, in units.", "", 0, 1000},
    {"frame", color, "", "A line within the edge of the bounds."},
    {"frameWidth", number, "1", "Its width, in units.", "", 0, 100},
};

constexpr Property kGradient[] = {
    {"colors", colors, "", "Two or more, from top to bottom or from left to right.", "", 0, 0, true},
    {"stops", numbers, "", "Where each color stands, 0 to 1 and rising; without them they are evenly spread."},
    {"rounded", number, "0", "Radius of the corners, in units.", "", 0, 1000},
};

} // namespace

ViewType rectangleType() {
    return {"rectangle", "A rectangle of one color, with a frame or without.", {kRectangle}, make<View>};
}

ViewType gradientType() {
    return {"gradient", "A rectangle whose color changes along it.", {kGradient, kOrientation}, make<View>};
}

} // namespace Quilt
