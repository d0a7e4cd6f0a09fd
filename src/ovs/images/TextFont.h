// Text as views write it: in outlines or in the frames of a film, at the display's scale, on whole pixel
// rows. All measures are pixels. Glyphs are kept once they have been drawn, so a font is for one thread at a
// time.
#pragma once

#include "drawing/Surface.h"
#include "images/Film.h"
#include "images/Specifications.h"

#include <memory>
#include <string_view>
#include <unordered_map>

namespace Images {

class TextFont {
public:
    virtual ~TextFont() = default;

    virtual double ascent() const = 0;     // of the highest characters above the baseline
    virtual double descent() const = 0;    // of the lowest below it
    virtual double lineHeight() const = 0; // from a baseline to the next
    virtual double width(std::u16string_view text) const = 0;

    // Draws one line from x to the right; nothing outside of `clip` is touched. Returns whether the font has
    // all the characters.
    virtual bool draw(const Drawing::SurfaceView& target, const Drawing::IntRect& clip, double x,
                      double baseline, std::u16string_view text, unsigned opacity = 255) = 0;
};

class FilmText final : public TextFont {
public:
    // The film has a frame for each character of the set: ImageError "Invalid film image type" if not, "Image
    // is of incorrect type" for a mask. `scale` is pixels a unit.
    FilmText(Film film, const FilmFontSpecification& specification, double scale);

    double ascent() const override { return ascent_; }
    double descent() const override { return film_.height() - ascent_; }
    double lineHeight() const override { return film_.height() + leading_; }
    double width(std::u16string_view text) const override;
    bool draw(const Drawing::SurfaceView& target, const Drawing::IntRect& clip, double x, double baseline,
              std::u16string_view text, unsigned opacity = 255) override;

private:
    Film film_;
    std::unordered_map<char16_t, int> frames_;
    int unknown_ = -1; // frame
    double ascent_;
    double leading_;
    double advance_;
};

} // namespace Images
