#include "drawing/Canvas.h"

#include "drawing/Blending.h"
#include "drawing/Flatten.h"
#include "drawing/Rasteriser.h"
#include "drawing/Shading.h"
#include "drawing/Stroker.h"

#include <algorithm>
#include <cmath>

namespace Drawing {

namespace {

constexpr double kTolerance = 0.05; // how far a curve may stray, in pixels

unsigned opacityByte(double opacity) {
    return static_cast<unsigned>(std::lround(std::clamp(opacity, 0.0, 1.0) * 255.0));
}

std::uint64_t areaOf(const ConstSurfaceView& view) {
    return static_cast<std::uint64_t>(view.width) * static_cast<std::uint64_t>(view.height);
}

// Halved in both directions, each pixel the mean of four: what pictures are drawn from when they are shown much
// smaller than they are.
Surface halved(const ConstSurfaceView& picture) {
    Surface result(std::max(1, picture.width / 2), std::max(1, picture.height / 2));
    const SurfaceView view = result.view();
    for (int y = 0; y < view.height; ++y) {
        const Pixel* const upper = picture.row(std::min(2 * y, picture.height - 1));
        const Pixel* const lower = picture.row(std::min(2 * y + 1, picture.height - 1));
        for (int x = 0; x < view.width; ++x) {
            const int left = std::min(2 * x, picture.width - 1);
            const int right = std::min(2 * x + 1, picture.width - 1);
            const auto mean = [&](unsigned shift) {
                const auto channel = [shift](Pixel pixel) { return pixel >> shift & 0xFF; };
                return (channel(upper[left]) + channel(upper[right]) + channel(lower[left]) +
                        channel(lower[right]) + 2) /
                           4
                       << shift;
            };
            view.at(x, y) = mean(24) | mean(16) | mean(8) | mean(0);
        }
    }
    return result;
}

// A picture small enough to be sampled pixel by pixel, and the way there from the surface.
struct Sampled {
    ConstSurfaceView picture;
    Transform toPicture;
    Surface reduced; // holds the pixels, where they had to be made
};

Sampled sampled(const ConstSurfaceView& picture, const Transform& toPicture, Effort& effort) {
    Sampled result{picture, toPicture, {}};
    // Steps of two pixels and more would jump over some.
    while (result.toPicture.maxScale() >= 2.0 && std::max(result.picture.width, result.picture.height) > 1) {
        effort.spend(4 * areaOf(result.picture));
        Surface half = halved(result.picture);
        const Transform shrink = Transform::scale(static_cast<double>(half.width()) / result.picture.width,
                                                  static_cast<double>(half.height()) / result.picture.height);
        result.toPicture = shrink * result.toPicture;
        result.reduced = std::move(half);
        result.picture = static_cast<const Surface&>(result.reduced).view();
    }
    return result;
}

// Bounds without extent in a direction span one unit there, so that a gradient along a straight line works.
Transform ofBounds(const Rect& bounds) {
    return {bounds.width > 0.0 ? bounds.width : 1.0, 0.0, 0.0, bounds.height > 0.0 ? bounds.height : 1.0,
            bounds.x, bounds.y};
}

CoverageTable coverageTable(double gamma) {
    CoverageTable table;
    for (std::size_t i = 0; i < table.size(); ++i) {
        const double coverage = static_cast<double>(i) / 255.0;
        table[i] = static_cast<std::uint8_t>(std::lround(std::pow(coverage, gamma) * 255.0));
    }
    return table;
}

struct RasteriserSink {
    static constexpr unsigned kLinesAtOnce = 1024;

    Rasteriser& rasteriser;
    Effort& effort;
    unsigned lines = 0;

    void moveTo(Point p) { rasteriser.moveTo(p); }
    void lineTo(Point p) {
        rasteriser.lineTo(p);
        if (++lines == kLinesAtOnce) {
            spend();
        }
    }
    void turnTo(Point p) { lineTo(p); }
    void close() { rasteriser.close(); }
    void spend() {
        effort.spend(lines * Effort::kPoint);
        lines = 0;
    }
};

} // namespace

Mask::Mask(const ConstSurfaceView& drawing, bool inverted, const Mask* outer)
    : width_(drawing.width), height_(drawing.height),
      coverage_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_)) {
    std::uint8_t* next = coverage_.data();
    for (int y = 0; y < height_; ++y) {
        const Pixel* const pixels = drawing.row(y);
        const std::uint8_t* const limit = outer ? outer->row(y) : nullptr;
        for (int x = 0; x < width_; ++x) {
            const unsigned alpha = inverted ? 255 - alphaOf(pixels[x]) : alphaOf(pixels[x]);
            *next++ = static_cast<std::uint8_t>(limit ? multiply255(alpha, limit[x]) : alpha);
        }
    }
}

struct Canvas::Workshop {
    Workshop(const SurfaceView& surface, Effort* shared) : target(surface), effort(shared ? *shared : own) {}

    SurfaceView target;
    Effort own{Effort::kEndless};
    Effort& effort;
    Rasteriser rasteriser;
    double gamma = 1.0;
    CoverageTable coverage = coverageTable(1.0);
    ColourTable colours; // a gradient's, where its opacity or the shape's changes them
    Polylines lines;
    Polylines dashes;
    Polylines outline;

    void setGamma(double value) {
        if (value != gamma) {
            gamma = value;
            coverage = coverageTable(value);
        }
    }

    // `feed(sink)` gives the shape's lines; it is called again for each band when the shape has too many edges to
    // be held at once.
    template <class Feed, class Blend>
    void rasterise(const IntRect& band, FillRule rule, const Feed& feed, Blend& blend) {
        rasteriser.begin(band);
        RasteriserSink sink{rasteriser, effort};
        feed(sink);
        sink.spend();
        rasteriser.close();
        if (!rasteriser.full()) {
            rasteriser.sweep(rule, coverage, blend);
            effort.spend(rasteriser.edgePixels() * Effort::kCell + rasteriser.sweptPixels() * blend.steps());
        } else if (band.height > 1) {
            const int half = band.height / 2;
            rasterise({band.x, band.y, band.width, half}, rule, feed, blend);
            rasterise({band.x, band.y + half, band.width, band.height - half}, rule, feed, blend);
        }
    }

    // Calls `use(source, opacity)` with the paint's source as it lies on the surface; not at all for a paint that has
    // no place there.
    template <class Use>
    void withSource(const Paint& paint, const Rect& bounds, const Transform& toSurface, const Use& use) {
        if (paint.isInvisible()) {
            return;
        }
        const unsigned opacity = opacityByte(paint.opacity);
        if (const auto* colour = std::get_if<Colour>(&paint.source)) {
            use(SolidSource{scaled(*colour, opacity)}, 255U);
            return;
        }
        const Transform place =
            paint.relative ? toSurface * ofBounds(bounds) * paint.transform : toSurface * paint.transform;
        const auto toPaint = place.inverse();
        if (!toPaint) {
            return;
        }
        if (const auto* linear = std::get_if<LinearGradient>(&paint.source)) {
            useLinear(*linear, *toPaint, opacity, use);
        } else if (const auto* radial = std::get_if<RadialGradient>(&paint.source)) {
            useRadial(*radial, *toPaint, opacity, use);
        } else {
            usePattern(std::get<Pattern>(paint.source), *toPaint, opacity, use);
        }
    }

    template <class Feed>
    void paintShape(const Feed& feed, FillRule rule, const Paint& paint, const Rect& bounds,
                    const DrawOptions& options) {
        withSource(paint, bounds, options.transform, [&](const auto& source, unsigned opacity) {
            blendShape(feed, rule, source, opacity, options);
        });
    }

    template <class Feed, class Source>
    void blendShape(const Feed& feed, FillRule rule, const Source& source, unsigned opacity,
                    const DrawOptions& options) {
        setGamma(options.gamma);
        if (options.mask) {
            Blending<Source, true> blend(target, source, opacity, options.mask);
            rasterise(target.bounds(), rule, feed, blend);
        } else {
            Blending<Source, false> blend(target, source, opacity, nullptr);
            rasterise(target.bounds(), rule, feed, blend);
        }
    }

    // Leaves the stroke's outline in `outline`, in user units.
    void makeStroke(const Path& path, const Pen& pen, const DrawOptions& options) {
        const double scale = std::max(options.transform.maxScale(), 1e-9) * options.curveQuality;
        lines.clear();
        flatten(path, Transform(), kTolerance / scale, lines);
        outline.clear();
        if (pen.dash + pen.gap > 0.0 && pen.gap > 0.0) {
            dashes.clear();
            cutIntoDashes(lines, pen, dashes);
            strokeOutline(dashes, pen, kTolerance / scale, outline);
        } else {
            strokeOutline(lines, pen, kTolerance / scale, outline);
        }
        effort.spend((lines.points.size() + outline.points.size()) * Effort::kPoint);
    }

private:
    const Pixel* tableOf(const GradientTable& table, unsigned opacity) {
        if (opacity == 255) {
            return table.colours();
        }
        for (std::size_t i = 0; i < colours.size(); ++i) {
            colours[i] = scaled(table.colours()[i], opacity);
        }
        return colours.data();
    }

    template <class Use>
    void useLinear(const LinearGradient& linear, const Transform& toPaint, unsigned opacity, const Use& use) {
        const double dx = linear.end.x - linear.start.x;
        const double dy = linear.end.y - linear.start.y;
        const double square = dx * dx + dy * dy;
        if (!(square > 0.0 && std::isfinite(square))) { // from a point to itself: beyond the end, everywhere
            use(SolidSource{scaled(linear.table->stops().back().colour, opacity)}, 255U);
            return;
        }
        const auto along = [&](double x, double y) { return (x * dx + y * dy) / square; };
        use(LinearSource(tableOf(*linear.table, opacity), linear.table->isOpaque() && opacity == 255,
                         along(toPaint.a, toPaint.b), along(toPaint.c, toPaint.d),
                         along(toPaint.e - linear.start.x, toPaint.f - linear.start.y)),
            255U);
    }

    template <class Use>
    void useRadial(const RadialGradient& radial, const Transform& toPaint, unsigned opacity, const Use& use) {
        const auto toUnit = (Transform::offset(radial.centre.x, radial.centre.y) *
                             Transform::scale(radial.radiusX, radial.radiusY))
                                .inverse();
        if (!toUnit) {
            use(SolidSource{scaled(radial.table->stops().back().colour, opacity)}, 255U);
            return;
        }
        use(RadialSource(tableOf(*radial.table, opacity), radial.table->isOpaque() && opacity == 255,
                         *toUnit * toPaint),
            255U);
    }

    template <class Use>
    void usePattern(const Pattern& pattern, const Transform& toPaint, unsigned opacity, const Use& use) {
        if (!pattern.tile || pattern.tile->isEmpty() || pattern.area.isEmpty()) {
            return;
        }
        const ConstSurfaceView tile = static_cast<const Surface&>(*pattern.tile).view();
        const Transform toTile = Transform::scale(tile.width / pattern.area.width,
                                                  tile.height / pattern.area.height) *
                                 Transform::offset(-pattern.area.x, -pattern.area.y) * toPaint;
        const Sampled picture = sampled(tile, toTile, effort);
        use(PictureSource<Edges::repeat>(picture.picture, picture.toPicture), opacity);
    }
};

Canvas::Canvas(const SurfaceView& target, Effort* effort)
    : target_(target), workshop_(std::make_unique<Workshop>(target, effort)) {}

Canvas::~Canvas() = default;

void Canvas::fill(const Path& path, const Paint& paint, FillRule rule, const DrawOptions& options) {
    fill(path, paint, rule, options, paint.relative ? path.bounds() : Rect());
}

void Canvas::fill(const Path& path, const Paint& paint, FillRule rule, const DrawOptions& options,
                  const Rect& paintBounds) {
    const double tolerance = kTolerance / options.curveQuality;
    const auto feed = [&](RasteriserSink& sink) { flatten(path, options.transform, tolerance, sink); };
    workshop_->paintShape(feed, rule, paint, paintBounds, options);
}

void Canvas::stroke(const Path& path, const Pen& pen, const DrawOptions& options) {
    stroke(path, pen, options, pen.paint.relative ? path.bounds() : Rect());
}

void Canvas::stroke(const Path& path, const Pen& pen, const DrawOptions& options, const Rect& paintBounds) {
    if (!(pen.width > 0.0) || pen.paint.isInvisible()) {
        return;
    }
    workshop_->makeStroke(path, pen, options);
    const auto feed = [&](RasteriserSink& sink) {
        const Polylines& outline = workshop_->outline;
        for (const auto& contour : outline.contours) {
            for (std::size_t i = 0; i < contour.count; ++i) {
                const Point p = options.transform.apply(outline.points[contour.first + i]);
                i == 0 ? sink.moveTo(p) : sink.lineTo(p);
            }
            sink.close();
        }
    };
    workshop_->paintShape(feed, FillRule::nonZero, pen.paint, paintBounds, options);
}

void Canvas::wipe(const Paint& paint, const DrawOptions& options) {
    const std::uint64_t area = areaOf(target_);
    if (paint.isInvisible()) {
        workshop_->effort.spend(area);
        replace(target_, SolidSource{kTransparent}, 255, options.mask);
        return;
    }
    workshop_->withSource(paint, Rect(), options.transform, [&](const auto& source, unsigned opacity) {
        workshop_->effort.spend(area * source.steps());
        replace(target_, source, opacity, options.mask);
    });
}

void Canvas::drawImage(const ConstSurfaceView& image, const Rect& area, double opacity, const Rect* clip,
                       const DrawOptions& options) {
    Rect shown = area;
    if (clip) {
        const double left = std::max(area.x, clip->x);
        const double top = std::max(area.y, clip->y);
        shown = {left, top, std::min(area.right(), clip->right()) - left,
                 std::min(area.bottom(), clip->bottom()) - top};
    }
    const auto toUser = options.transform.inverse();
    if (image.isEmpty() || area.isEmpty() || shown.isEmpty() || !toUser || opacity <= 0.0) {
        return;
    }
    const Transform toImage = Transform::scale(image.width / area.width, image.height / area.height) *
                              Transform::offset(-area.x, -area.y) * *toUser;
    const Sampled picture = sampled(image, toImage, workshop_->effort);
    Path outline;
    outline.addRect(shown);
    const auto feed = [&](RasteriserSink& sink) { flatten(outline, options.transform, kTolerance, sink); };
    workshop_->blendShape(feed, FillRule::nonZero,
                          PictureSource<Edges::hold>(picture.picture, picture.toPicture),
                          opacityByte(opacity), options);
}

} // namespace Drawing
