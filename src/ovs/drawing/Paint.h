// What shapes are painted with: a colour, a gradient or a pattern; and pens. Coordinates are in user units,
// unless the paint is relative: then 0..1 spans the bounds of the shape on both axes.
#pragma once

#include "drawing/Colour.h"
#include "drawing/Geometry.h"
#include "drawing/Surface.h"

#include <memory>
#include <variant>
#include <vector>

namespace Drawing {

struct GradientStop {
    double position = 0.0;
    Colour colour = kTransparent;

    friend bool operator==(const GradientStop&, const GradientStop&) = default;
};

// Colours along 0..1, interpolated with alpha pre-multiplied in 256 steps, the ends continued outside. Positions
// rise and there is at least one stop. Immutable: the table is made once for all the shapes it paints.
class GradientTable {
public:
    static constexpr int kSize = 256;

    explicit GradientTable(std::vector<GradientStop> stops);

    const std::vector<GradientStop>& stops() const { return stops_; }
    const Pixel* colours() const { return colours_; }
    bool isOpaque() const { return opaque_; }

private:
    std::vector<GradientStop> stops_;
    Pixel colours_[kSize];
    bool opaque_ = true;
};

struct LinearGradient {
    Point start;
    Point end;
    std::shared_ptr<const GradientTable> table;
};

// An ellipse around the centre, which is at 0; its edge is at 1.
struct RadialGradient {
    Point centre;
    double radiusX = 0.0;
    double radiusY = 0.0;
    std::shared_ptr<const GradientTable> table;
};

// A tile, repeated without end; `area` is the place of one in user units.
struct Pattern {
    std::shared_ptr<const Surface> tile;
    Rect area;
};

struct Paint {
    std::variant<Colour, LinearGradient, RadialGradient, Pattern> source = kBlack;
    double opacity = 1.0;
    bool relative = false;
    Transform transform = {}; // of the paint within the user units or the shape's bounds

    // Paints nothing at all: shapes are not even rasterised.
    bool isInvisible() const {
        const Colour* colour = std::get_if<Colour>(&source);
        return opacity <= 0.0 || (colour && alphaOf(*colour) == 0);
    }
};

enum class FillRule { nonZero, evenOdd };
enum class Caps { butt, round, square };
enum class Joints { bevel, curve, miter };

struct Pen {
    Paint paint{kTransparent};
    double width = 1.0;
    Caps caps = Caps::butt;
    Joints joints = Joints::miter;
    double miterLimit = 4.0;
    double dash = 0.0; // lengths of dash and gap; a dash and gap of 0: a solid line
    double gap = 0.0;
    double dashOffset = 0.0;
};

} // namespace Drawing
