#include "images/Image.h"

#include "drawing/Compose.h"
#include "images/ImageError.h"

#include <algorithm>
#include <utility>

namespace Images {

namespace {

std::variant<Drawing::Surface, MaskPixels, ColourRuns, MaskRuns> stored(Drawing::Surface pixels,
                                                                        Format format) {
    const Drawing::ConstSurfaceView view = std::as_const(pixels).view();
    switch (format) {
    case Format::mask:
        return MaskPixels(view);
    case Format::rle:
        return ColourRuns(view);
    case Format::rlemask:
        return MaskRuns(view);
    case Format::colour:
        break;
    }
    return pixels;
}

} // namespace

Image::Image(Drawing::Surface pixels, Format format, int frames)
    : width_(pixels.width()), height_(pixels.height()), frames_(frames) {
    storage_ = stored(std::move(pixels), format);
}

std::size_t Image::bytes() const {
    if (const auto* pixels = std::get_if<Drawing::Surface>(&storage_)) {
        return static_cast<std::size_t>(pixels->width()) * static_cast<std::size_t>(pixels->height()) *
               sizeof(Drawing::Pixel);
    }
    if (const auto* mask = std::get_if<MaskPixels>(&storage_)) {
        return mask->bytes();
    }
    if (const auto* runs = std::get_if<ColourRuns>(&storage_)) {
        return runs->bytes();
    }
    return std::get<MaskRuns>(storage_).bytes();
}

Drawing::ConstSurfaceView Image::pixels() const {
    const auto* pixels = std::get_if<Drawing::Surface>(&storage_);
    if (pixels == nullptr) {
        throw ImageError("Image is of incorrect type");
    }
    return pixels->view();
}

void Image::draw(const Drawing::SurfaceView& target, const Drawing::IntRect& clip, int x, int y,
                 const Manner& manner) const {
    const Drawing::IntRect area = intersection(intersection(target.bounds(), clip), {x, y, width_, height()});
    if (area.isEmpty() || manner.opacity == 0) {
        return;
    }
    const int top = std::clamp(manner.frame, 0, frames_ - 1) * height() + (area.y - y);
    const int from = area.x - x;
    const int to = from + area.width;
    if (const auto* pixels = std::get_if<Drawing::Surface>(&storage_)) {
        Drawing::compose(target.part(area), pixels->view().part({from, top, area.width, area.height}), 0, 0,
                         manner.opacity);
        return;
    }
    const Drawing::Pixel colour = Drawing::scaled(manner.colour, manner.opacity);
    for (int line = 0; line < area.height; ++line) {
        Drawing::Pixel* out = target.row(area.y + line) + area.x;
        if (const auto* mask = std::get_if<MaskPixels>(&storage_)) {
            drawMaskRow(mask->row(top + line), from, to, out, colour);
        } else if (const auto* runs = std::get_if<ColourRuns>(&storage_)) {
            runs->drawRow(top + line, from, to, out, manner.opacity);
        } else {
            std::get<MaskRuns>(storage_).drawRow(top + line, from, to, out, colour);
        }
    }
}

} // namespace Images
