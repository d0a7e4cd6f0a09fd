#include "images/Film.h"

#include "drawing/Compose.h"
#include "images/ImageError.h"

#include <cmath>
#include <utility>

namespace Images {

namespace {

// `later` / 255 of one pixel and the rest of the other.
Drawing::Pixel mixed(Drawing::Pixel first, Drawing::Pixel second, unsigned later) {
    constexpr Drawing::Pixel kEven = 0x00FF00FF;
    const unsigned former = 255 - later;
    Drawing::Pixel even = (first & kEven) * former + (second & kEven) * later + 0x00800080;
    even = (even + (even >> 8 & kEven)) >> 8 & kEven;
    Drawing::Pixel odd = (first >> 8 & kEven) * former + (second >> 8 & kEven) * later + 0x00800080;
    odd = (odd + (odd >> 8 & kEven)) & ~kEven;
    return even | odd;
}

} // namespace

Film::Film(std::shared_ptr<const Image> image, bool interpolate)
    : image_(std::move(image)), interpolate_(interpolate) {
    if (interpolate_ && image_->format() != Format::colour) {
        throw ImageError("Invalid film image type");
    }
}

void Film::draw(const Drawing::SurfaceView& target, const Drawing::IntRect& clip, int x, int y,
                double position, unsigned opacity) const {
    const double last = frames() - 1;
    position = position >= 0.0 ? std::fmin(position, last) : 0.0; // not a number: the first
    const int frame = static_cast<int>(position);
    const auto later = static_cast<unsigned>(std::lround((position - frame) * 255.0));
    if (!interpolate_ || later == 0 || later == 255) {
        image_->draw(target, clip, x, y,
                     {.frame = static_cast<int>(std::lround(position)), .opacity = opacity});
        return;
    }
    const Drawing::IntRect area =
        intersection(intersection(target.bounds(), clip), {x, y, width(), height()});
    if (area.isEmpty()) {
        return;
    }
    const Drawing::ConstSurfaceView frames = image_->pixels();
    Drawing::Surface between(area.width, area.height);
    for (int line = 0; line < area.height; ++line) {
        const Drawing::Pixel* first = frames.row(frame * height() + area.y - y + line) + (area.x - x);
        const Drawing::Pixel* second = first + height() * frames.stride;
        Drawing::Pixel* out = between.view().row(line);
        for (int i = 0; i < area.width; ++i) {
            out[i] = mixed(first[i], second[i], later);
        }
    }
    Drawing::compose(target.part(area), between.view(), 0, 0, opacity);
}

} // namespace Images
