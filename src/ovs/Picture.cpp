#include "ovs/Picture.h"

#include "ovs/Values.h"

#include <algorithm>
#include <cmath>

namespace OVS {

using Drawing::IntRect;
using Drawing::Transform;

namespace {

// However large the scale, a tile has at most these.
constexpr double kMostTilePixels = 1 << 22;

// At least one pixel, and never more than the check of surfaces can tell from too many.
int pixelsAcross(int units, double scale) {
    return static_cast<int>(std::lround(std::clamp(units * scale, 1.0, 1e9)));
}

} // namespace

Picture::Picture(Run& run, Kind kind, int width, int height, const Transform& placement)
    : run_(run), kind_(kind), placement_(placement) {
    makeCanvas(width, height);
}

void Picture::makeCanvas(int width, int height) {
    pixels_ = run_.makeSurface(width, height);
    canvas_ = std::make_unique<Drawing::Canvas>(pixels_->view(), &run_.effort());
}

void Picture::declareBounds(const IntRect& bounds) {
    if (kind_ == Kind::mask) {
        fail("Bounds cannot be declared for mask");
    }
    if (declared_) {
        fail("Multiple bounds declarations");
    }
    declared_ = true;
    bounds_ = bounds;
    if (kind_ == Kind::view) {
        return;
    }
    if (kind_ == Kind::resource && (bounds.x != 0 || bounds.y != 0)) {
        fail("OVS bounds need to be zero based: " + std::to_string(bounds.x) + "," +
             std::to_string(bounds.y) + "," + std::to_string(bounds.width) + "," +
             std::to_string(bounds.height));
    }
    double scaleX = placement_.a;
    double scaleY = placement_.d;
    if (kind_ == Kind::pattern) {
        const double pixels = scaleX * bounds.width * scaleY * bounds.height;
        const double less = std::sqrt(std::min(1.0, kMostTilePixels / pixels));
        scaleX = std::min(scaleX * less, kMostTilePixels / bounds.width);
        scaleY = std::min(scaleY * less, kMostTilePixels / bounds.height);
    }
    makeCanvas(pixelsAcross(bounds.width, scaleX), pixelsAcross(bounds.height, scaleY));
    if (kind_ != Kind::resource) {
        // Whole pixels, edge to edge, so that tiles meet.
        scaleX = static_cast<double>(pixels_->width()) / bounds.width;
        scaleY = static_cast<double>(pixels_->height()) / bounds.height;
    }
    placement_ = Transform::scale(scaleX, scaleY) * Transform::offset(-bounds.x, -bounds.y);
}

void Picture::requireBounds() const {
    if (!canvas_) {
        fail("Undeclared bounds");
    }
}

} // namespace OVS
