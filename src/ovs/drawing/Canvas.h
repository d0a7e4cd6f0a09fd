// Draws on a surface: fills, strokes and images through a transform and a mask. Neither the surface nor the mask
// belongs to it. Coordinates may be any numbers: what lies outside is cut off.
#pragma once

#include "drawing/Effort.h"
#include "drawing/Paint.h"
#include "drawing/Path.h"
#include "drawing/Surface.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace Drawing {

// How much of each pixel may be drawn on, 0..255.
class Mask {
public:
    // The alpha of a drawing, or its opposite; times `outer`, if that is not null.
    Mask(const ConstSurfaceView& drawing, bool inverted, const Mask* outer);

    int width() const { return width_; }
    int height() const { return height_; }
    const std::uint8_t* row(int y) const {
        return coverage_.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width_);
    }

private:
    int width_ = 0;
    int height_ = 0;
    std::vector<std::uint8_t> coverage_;
};

struct DrawOptions {
    Transform transform = {};
    double gamma = 1.0;        // the coverage of edge pixels is raised to this power
    double curveQuality = 1.0; // 1: curves stray up to a twentieth of a pixel
    const Mask* mask = nullptr; // of the surface's size
};

class Canvas {
public:
    // What is drawn is spent from `effort`, if there is one, and ends in an EffortError.
    explicit Canvas(const SurfaceView& target, Effort* effort = nullptr);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    const SurfaceView& target() const { return target_; }

    // A relative paint spans path.bounds(); the overload tells other bounds (those of a whole text, for a glyph).
    void fill(const Path& path, const Paint& paint, FillRule rule, const DrawOptions& options);
    void fill(const Path& path, const Paint& paint, FillRule rule, const DrawOptions& options,
              const Rect& paintBounds);
    void stroke(const Path& path, const Pen& pen, const DrawOptions& options);
    void stroke(const Path& path, const Pen& pen, const DrawOptions& options, const Rect& paintBounds);

    // Replaces everything by the paint; where there is a mask, as far as it lets.
    void wipe(const Paint& paint, const DrawOptions& options);

    // Draws the image into the rectangle `area` of user units; `clip` is in user units, too.
    void drawImage(const ConstSurfaceView& image, const Rect& area, double opacity, const Rect* clip,
                   const DrawOptions& options);

private:
    struct Workshop; // the rasteriser and its scratch memory, kept from shape to shape

    SurfaceView target_;
    std::unique_ptr<Workshop> workshop_;
};

} // namespace Drawing
