#include "quilt/View.h"
#include "quilt/views/Rows.h"
#include "quilt/views/Views.h"

namespace Quilt {

namespace {

using namespace Rows;

constexpr Property kRaster[] = {
    {"image", image, "", "The picture.", "", 0, 0, true},
    {"align", align, "left top", "Where it stands in the bounds."},
    {"tile", boolean, "false", "Whether it is repeated to fill the bounds."},
};

constexpr Property kVector[] = {
    {"image", image, "", "The picture: a specification with `ovsCode` or `ovsFile`.", "", 0, 0, true},
    {"align", align, "left top", "Where it stands in the bounds."},
    {"live", boolean, "false", "Whether it is drawn anew when variables change that it reads."},
    {"interval", number, "0.033", "At least so many seconds between two of those drawings.", "", 0, 60},
};

constexpr Property kAnimation[] = {
    {"film", film, "", "The frames.", "", 0, 0, true},
    {"variable", variable, "", "Whose value chooses the frame; without one the frames go by themselves."},
    {"range", range, "{ 0, 1 }", "The variable's values for the first and the last frame; true is 1, false 0."},
    {"interval", number, "0.04", "Seconds a frame.", "", 0.001, 3600},
    {"loop", boolean, "true", "Whether the last frame is followed by the first."},
    {"running", condition, "true", "Whether the frames go by."},
    {"align", align, "left top", "Where the frames stand in the bounds."},
};

constexpr Property kMarker[] = {
    {"variable", variable, "", "Whose value moves the mark.", "", 0, 0, true},
    {"range", range, "{ 0, 1 }", "Its values at both ends."},
    {"image", image, "", "The mark."},
    {"color", color, "white", "Of the mark when it has no image."},
    {"size", number, "2", "Its length along the way, in units, when it has no image.", "", 0, 1000},
    {"rounded", number, "0", "Radius of its corners, in units.", "", 0, 1000},
};

} // namespace

ViewType rasterType() {
    return {"raster", "A picture.", {kRaster}, make<View>};
}

ViewType vectorType() {
    return {"vector", "A picture that a script draws, in the scale at hand.", {kVector}, make<View>};
}

ViewType animationType() {
    return {"animation", "One frame of a film, chosen by a variable or by time.", {kAnimation}, make<View>};
}

ViewType markerType() {
    return {"marker", "A mark that moves across its bounds with a variable's value.", {kMarker, kOrientation}, make<View>};
}

} // namespace Quilt
