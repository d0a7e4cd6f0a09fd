// What menus and message windows need to draw themselves: letters and colours. This room knows no fonts; the
// editor lends its own. Systems with menus of their own do not ask for them.
#pragma once

#include "platform/Pixels.h"

#include <string_view>

namespace Platform {

struct MenuColours {
    Argb background = 0xFF2B2B2E;
    Argb border = 0xFF55555A;
    Argb text = 0xFFE6E6E6;
    Argb disabledText = 0xFF88888C;
    Argb highlight = 0xFF3D6EA8;
    Argb highlightText = 0xFFFFFFFF;
};

class TextPainter {
public:
    virtual ~TextPainter() = default;

    // From the top of one line to the top of the next, in pixels; everything else grows with it.
    virtual int lineHeight() = 0;
    virtual int width(std::string_view utf8) = 0;
    // Draws one line whose box begins at `topLeft`, clipped to the canvas.
    virtual void draw(const Canvas& canvas, Point topLeft, std::string_view utf8, Argb colour) = 0;

    virtual MenuColours colours() { return {}; }
};

} // namespace Platform
