#include "quilt/views/Label.h"

#include "quilt/Document.h"
#include "quilt/Unicode.h"

#include <cmath>

namespace Quilt {

Label::Label(const ViewSetup& setup, std::string fallbackFont)
    : source_(setup.properties.string("text")), text_(toUtf16(source_.value())),
      font_(setup.properties, "font", std::move(fallbackFont)), plainFont_(font_),
      colour_(setup.properties, "color") {
    if (setup.properties.knows("align")) {
        align_ = setup.properties.align("align");
        const Point units = setup.properties.offset("offset");
        const double scale = setup.document.scale().factor();
        offset_ = {static_cast<std::int32_t>(std::lround(units.x * scale)),
                   static_cast<std::int32_t>(std::lround(units.y * scale))};
    }
}

bool Label::refresh(Document& document) {
    if (!source_.refresh(document)) {
        return false;
    }
    text_ = toUtf16(source_.value());
    return true;
}

void Label::setText(std::string_view text) {
    text_ = toUtf16(text);
}

void Label::load(Document& document) {
    colour_.load(document);
    font_.load(document, colour_.get());
}

FontAsset Label::inColour(Document& document, Colour colour) const {
    FontAsset font = plainFont_;
    font.load(document, colour);
    return font;
}

void Label::draw(const DrawContext& context, const Rectangle& area, Images::TextFont& font, unsigned opacity,
                 bool wrap) const {
    drawText(context, area, font, text_,
             {.align = align_, .offset = offset_, .wrap = wrap, .opacity = opacity});
}

} // namespace Quilt
