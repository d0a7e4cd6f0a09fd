// The text of a view, as the rows of kText have it.
#pragma once

#include "quilt/LiveText.h"
#include "quilt/drawing/Assets.h"
#include "quilt/drawing/Painting.h"

#include <string>

namespace Quilt {

class Label {
public:
    Label(const ViewSetup& setup, std::string fallbackFont);

    bool refresh(Document& document); // true: another text
    void setText(std::string_view text);
    void load(Document& document);
    FontAsset inColour(Document& document, Colour colour) const; // the font in another color

    const std::u16string& text() const { return text_; }
    Images::TextFont* font() const { return font_.get(); }
    void draw(const DrawContext& context, const Rectangle& area, Images::TextFont& font,
              unsigned opacity = 255, bool wrap = false) const;

private:
    LiveText source_;
    std::u16string text_;
    FontAsset font_;
    FontAsset plainFont_; // not loaded
    ColourAsset colour_;
    Align align_;
    Point offset_;
};

} // namespace Quilt
