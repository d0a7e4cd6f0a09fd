// How views draw: boxes, pictures and lines of text, in pixels relative to a view's top left and cut off at
// its edge.
#pragma once

#include "drawing/Canvas.h"
#include "images/Film.h"
#include "images/Image.h"
#include "images/TextFont.h"
#include "quilt/Properties.h"
#include "quilt/View.h"
#include "quilt/drawing/Assets.h"

#include <optional>
#include <string>
#include <string_view>

namespace Quilt {

// Pixels in fractions, for what a layout gives in units.
double pixelsOf(const Document& document, double units);

// `area`, relative to the view, where the context's target has it.
Drawing::Rect placed(const DrawContext& context, const Rectangle& area);
// The part of it that may be drawn on.
Drawing::IntRect clipOf(const DrawContext& context, const Rectangle& area);

void fillBox(const DrawContext& context, const Rectangle& area, const Drawing::Paint& paint, double radius);
void fillBox(const DrawContext& context, const Rectangle& area, Colour colour, double radius = 0);
void frameBox(const DrawContext& context, const Rectangle& area, Colour colour, double width, double radius);

struct ImageManner {
    Align align;
    bool tile = false;
    unsigned opacity = 255;
    Colour colour = 0xFFFFFFFF; // of masks
};
void drawImage(const DrawContext& context, const Rectangle& area, const Images::Image& image,
               const ImageManner& manner);
void drawFilm(const DrawContext& context, const Rectangle& area, const Images::Film& film, double position,
              Align align);

struct TextManner {
    Align align{0.5, 0.5};
    Point offset; // pixels
    bool wrap = false;
    unsigned opacity = 255;
};
void drawText(const DrawContext& context, const Rectangle& area, Images::TextFont& font,
              std::u16string_view text, const TextManner& manner);

// The lines that `text` takes in `width` pixels: broken between words where `wrap` says so, and where it says
// line end.
std::vector<std::u16string> linesOf(Images::TextFont& font, std::u16string_view text, double width,
                                    bool wrap);

// Cut, with an ellipsis, to what fits.
std::u16string fitted(Images::TextFont& font, std::u16string_view text, double width);

// Background and frame as the rows of kBox have them.
class Box {
public:
    Box(const Properties& properties, const Document& document, std::string_view fill = "background");

    void load(Document& document);
    // `fill` in place of the box's own color.
    void draw(const DrawContext& context, const Rectangle& area, std::optional<Colour> fill = std::nullopt,
              unsigned opacity = 255) const;
    double radius() const { return radius_; }

private:
    ColourAsset fill_;
    ColourAsset frame_;
    double radius_;
    double frameWidth_;
};

} // namespace Quilt
