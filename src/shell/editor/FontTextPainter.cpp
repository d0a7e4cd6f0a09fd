#include "editor/FontTextPainter.h"

#include "quilt/Unicode.h"

#include <algorithm>
#include <cmath>

namespace Shell {

namespace {

constexpr const char* kFontName = "SourceSansPro";
constexpr double kSize = 13;
constexpr double kLineHeight = 19;
constexpr double kSmallestScale = 0.9; // menus stay legible where the editor is tiny

} // namespace

void FontTextPainter::setScale(double scale) {
    scale = std::max(scale, kSmallestScale);
    if (scale != scale_) {
        scale_ = scale;
        fonts_.clear();
    }
}

Images::TextFont& FontTextPainter::font(Platform::Argb colour) {
    std::unique_ptr<Images::TextFont>& font = fonts_[colour];
    if (!font) {
        Images::OutlineFontSpecification specification;
        specification.name = kFontName;
        specification.size = kSize;
        specification.colour = Drawing::Colour{colour};
        font = library_.font(specification, scale_);
    }
    return *font;
}

int FontTextPainter::lineHeight() {
    return static_cast<int>(std::lround(kLineHeight * scale_));
}

int FontTextPainter::width(std::string_view utf8) {
    return static_cast<int>(std::ceil(font(colours().text).width(Quilt::toUtf16(utf8))));
}

void FontTextPainter::draw(const Platform::Canvas& canvas, Platform::Point topLeft, std::string_view utf8,
                           Platform::Argb colour) {
    Images::TextFont& letters = font(colour);
    const double above = (lineHeight() - letters.ascent() - letters.descent()) / 2;
    const Drawing::SurfaceView view{canvas.pixels, canvas.width, canvas.height, canvas.stride};
    letters.draw(view, {0, 0, canvas.width, canvas.height}, topLeft.x,
                 topLeft.y + above + letters.ascent(), Quilt::toUtf16(utf8));
}

Platform::MenuColours FontTextPainter::colours() {
    Platform::MenuColours colours;
    colours.background = 0xFF222329;
    colours.border = 0xFF3A3C44;
    colours.text = 0xFFE9E5DC;
    colours.disabledText = 0xFF6F727A;
    colours.highlight = 0xFF3F4048;
    colours.highlightText = 0xFFFF8C70;
    return colours;
}

} // namespace Shell
