#include "images/OutlineText.h"

#include <cmath>
#include <cstdint>
#include <utility>

namespace Images {

namespace {

// Glyphs beyond this are drawn as outlines each time, not kept as pixels.
constexpr double kLargestKeptGlyph = 512.0;
constexpr std::size_t kCacheBytes = 4U << 20;

} // namespace

OutlineText::OutlineText(std::shared_ptr<const OVS::FontDocument> font,
                         OutlineFontSpecification specification, double scale)
    : font_(std::move(font)), specification_(std::move(specification)), size_(specification_.size * scale),
      outlineWidth_(specification_.outlineWidth * scale),
      pixelsPerFontUnit_(size_ / font_->metrics().unitsPerEm) {}

double OutlineText::width(std::u16string_view text) const {
    return font_->layOut(text, size_, 0.0).width;
}

bool OutlineText::draw(const Drawing::SurfaceView& target, const Drawing::IntRect& clip, double x,
                       double baseline, std::u16string_view text, unsigned opacity) {
    const OVS::TextRun run = font_->layOut(text, size_, 0.0);
    const Drawing::IntRect area = intersection(target.bounds(), clip);
    if (!area.isEmpty() && std::isfinite(x) && std::abs(baseline) < 1e6) {
        const int row = static_cast<int>(std::lround(baseline));
        if (outlineWidth_ > 0.0) {
            drawPart(target, area, x, row, run, Part::outline, opacity);
        }
        drawPart(target, area, x, row, run, Part::body, opacity);
    }
    return run.complete;
}

void OutlineText::drawPart(const Drawing::SurfaceView& target, const Drawing::IntRect& clip, double x,
                           int baseline, const OVS::TextRun& run, Part part, unsigned opacity) {
    const Drawing::Colour colour =
        Drawing::scaled(part == Part::body ? specification_.colour : specification_.outlineColour, opacity);
    for (const OVS::PlacedGlyph& glyph : run.glyphs) {
        const double steps = std::round((x + glyph.x) * specification_.cacheResolution);
        if (!(std::abs(steps) < 1e9)) {
            continue; // far outside of anything
        }
        const int left = static_cast<int>(std::floor(steps / specification_.cacheResolution));
        const int phase = static_cast<int>(steps) - left * specification_.cacheResolution;
        const Coverage* kept = coverage(*glyph.outline, phase, part);
        if (kept == nullptr) {
            drawLarge(target, clip, *glyph.outline, x + glyph.x, baseline, part, opacity);
            continue;
        }
        const Drawing::IntRect place = {left + kept->left, baseline + kept->top, kept->mask.width(),
                                        kept->mask.height()};
        const Drawing::IntRect area = intersection(clip, place);
        for (int line = 0; line < area.height && area.width > 0; ++line) {
            drawMaskRow(kept->mask.row(area.y - place.y + line), area.x - place.x,
                        area.x - place.x + area.width, target.row(area.y + line) + area.x, colour);
        }
    }
}

void OutlineText::drawLarge(const Drawing::SurfaceView& target, const Drawing::IntRect& clip,
                            const Drawing::Path& glyph, double x, int baseline, Part part,
                            unsigned opacity) const {
    Drawing::Canvas canvas(target.part(clip));
    Drawing::Paint paint;
    paint.source = part == Part::body ? specification_.colour : specification_.outlineColour;
    paint.opacity = opacity / 255.0;
    rasterise(canvas, glyph,
              Drawing::Transform::offset(x - clip.x, baseline - clip.y) *
                  Drawing::Transform::scale(pixelsPerFontUnit_, pixelsPerFontUnit_),
              paint, part);
}

// nullptr: the glyph is too large to be kept.
const OutlineText::Coverage* OutlineText::coverage(const Drawing::Path& glyph, int phase, Part part) {
    const Key key = {&glyph, phase, part};
    if (const auto kept = cache_.find(key); kept != cache_.end()) {
        return &kept->second;
    }
    Coverage made;
    if (!glyph.isEmpty()) {
        const Drawing::Rect bounds = glyph.bounds();
        const double margin = 1.0 + (part == Part::outline ? outlineWidth_ / 2.0 : 0.0);
        const double begin = static_cast<double>(phase) / specification_.cacheResolution;
        const double left = std::floor(bounds.x * pixelsPerFontUnit_ - margin);
        const double top = std::floor(bounds.y * pixelsPerFontUnit_ - margin);
        const double right = std::ceil(bounds.right() * pixelsPerFontUnit_ + margin + 1.0);
        const double bottom = std::ceil(bounds.bottom() * pixelsPerFontUnit_ + margin);
        if (!(right - left <= kLargestKeptGlyph && bottom - top <= kLargestKeptGlyph &&
              std::abs(left) < 1e6 && std::abs(top) < 1e6)) {
            return nullptr;
        }
        Drawing::Surface pixels(static_cast<int>(right - left), static_cast<int>(bottom - top));
        Drawing::Canvas canvas(pixels.view());
        rasterise(canvas, glyph,
                  Drawing::Transform::offset(begin - left, -top) *
                      Drawing::Transform::scale(pixelsPerFontUnit_, pixelsPerFontUnit_),
                  Drawing::Paint{}, part);
        made = {static_cast<int>(left), static_cast<int>(top), MaskPixels(std::as_const(pixels).view())};
    }
    if (cachedBytes_ + made.mask.bytes() > kCacheBytes) {
        cache_.clear();
        cachedBytes_ = 0;
    }
    cachedBytes_ += made.mask.bytes() + sizeof(Coverage);
    return &cache_.emplace(key, std::move(made)).first->second;
}

void OutlineText::rasterise(Drawing::Canvas& canvas, const Drawing::Path& glyph,
                            const Drawing::Transform& transform, const Drawing::Paint& paint,
                            Part part) const {
    Drawing::DrawOptions options;
    options.transform = transform;
    options.gamma = specification_.gamma;
    options.curveQuality = specification_.curveQuality;
    if (part == Part::body) {
        canvas.fill(glyph, paint, Drawing::FillRule::nonZero, options);
    } else {
        Drawing::Pen pen;
        pen.paint = paint;
        pen.width = outlineWidth_ / pixelsPerFontUnit_;
        pen.joints = Drawing::Joints::curve;
        canvas.stroke(glyph, pen, options);
    }
}

} // namespace Images
