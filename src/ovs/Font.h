// What vector images ask of fonts: text laid out along a baseline. Font documents implement Font; whoever knows which
// fonts there are implements FontSource.
#pragma once

#include "drawing/Path.h"

#include <memory>
#include <string_view>
#include <vector>

namespace ZEKT {
class Argument;
class Frame;
} // namespace ZEKT

namespace OVS {

struct PlacedGlyph {
    const Drawing::Path* outline = nullptr; // in font units, y down, baseline at 0; owned by the font
    double x = 0.0;                         // of its origin, in user units
};

struct TextRun {
    std::vector<PlacedGlyph> glyphs;
    double scale = 1.0; // from font units to user units
    double width = 0.0; // in user units: where the next character would stand
    bool complete = true; // false: a character had no glyph and shows as the replacement glyph
};

class Font {
public:
    virtual ~Font() = default;

    // `size` and `tracking` in user units.
    virtual TextRun layOut(std::u16string_view text, double size, double tracking) const = 0;
};

class FontSource {
public:
    virtual ~FontSource() = default;

    // A font that the host supplies; nullptr if it has none of this name.
    virtual std::shared_ptr<const Font> find(std::string_view name) = 0;

    // Runs the body of a `define font`, the instructions of a font document, in a scope below `frame`. Throws ZEKT
    // exceptions.
    virtual std::shared_ptr<const Font> read(ZEKT::Frame& frame, const ZEKT::Argument& body) = 0;
};

} // namespace OVS
