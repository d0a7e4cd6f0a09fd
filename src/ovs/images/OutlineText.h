// Text in the outlines of a font document.
#pragma once

#include "drawing/Canvas.h"
#include "fonts/FontDocument.h"
#include "images/MaskPixels.h"
#include "images/TextFont.h"

#include <cstddef>
#include <map>
#include <memory>
#include <utility>

namespace Images {

class OutlineText final : public TextFont {
public:
    // `scale` is pixels a unit.
    OutlineText(std::shared_ptr<const OVS::FontDocument> font, OutlineFontSpecification specification,
                double scale);

    double ascent() const override { return font_->metrics().ascent * pixelsPerFontUnit_; }
    double descent() const override { return -font_->metrics().descent * pixelsPerFontUnit_; }
    double lineHeight() const override {
        return ascent() + descent() + font_->metrics().lineGap * pixelsPerFontUnit_;
    }
    double width(std::u16string_view text) const override;
    bool draw(const Drawing::SurfaceView& target, const Drawing::IntRect& clip, double x, double baseline,
              std::u16string_view text, unsigned opacity = 255) override;

private:
    // The coverage of a glyph's pixels, its left top corner relative to the pixel that its origin is in.
    struct Coverage {
        int left = 0;
        int top = 0;
        MaskPixels mask;
    };
    enum class Part { outline, body };
    using Key = std::tuple<const Drawing::Path*, int, Part>;

    void drawPart(const Drawing::SurfaceView& target, const Drawing::IntRect& clip, double x, int baseline,
                  const OVS::TextRun& run, Part part, unsigned opacity);
    void drawLarge(const Drawing::SurfaceView& target, const Drawing::IntRect& clip,
                   const Drawing::Path& glyph, double x, int baseline, Part part, unsigned opacity) const;
    const Coverage* coverage(const Drawing::Path& glyph, int phase, Part part);
    void rasterise(Drawing::Canvas& canvas, const Drawing::Path& glyph, const Drawing::Transform& transform,
                   const Drawing::Paint& paint, Part part) const;

    std::shared_ptr<const OVS::FontDocument> font_;
    OutlineFontSpecification specification_;
    double size_; // pixels an em
    double outlineWidth_;
    double pixelsPerFontUnit_;
    std::map<Key, Coverage> cache_;
    std::size_t cachedBytes_ = 0;
};

} // namespace Images
