// Reads paints and pens from the arguments of an instruction. A paint's labels stand beside the instruction's
// own, or all in one bracketed argument.
#pragma once

#include "drawing/Paint.h"
#include "zekt/Arguments.h"
#include "zekt/Frame.h"

namespace OVS {

// Draws the body of a "pattern", a drawing of its own, into a tile, as fine as the paint's transform makes it.
class PatternMaker {
public:
    virtual ~PatternMaker() = default;
    virtual Drawing::Pattern makePattern(ZEKT::Frame& frame, const ZEKT::Argument& body, bool relative,
                                         const Drawing::Transform& transform) = 0;
};

// Fetches what belongs to the paint, the colour being the indexed argument 0.
Drawing::Paint readPaint(ZEKT::Frame& frame, ZEKT::Arguments& arguments, PatternMaker& patterns);

// A label's value that is a paint as a whole: red, or [gradient:[...] opacity:0.5].
Drawing::Paint readPaint(ZEKT::Frame& frame, const ZEKT::Argument& argument, PatternMaker& patterns);

// A number in 0..1: "Invalid opacity: TEXT", "opacity out of range [0..1]: ".
double readOpacity(const ZEKT::Argument& argument);

// A paint and the pen's own labels.
Drawing::Pen readPen(ZEKT::Frame& frame, ZEKT::Arguments& arguments, PatternMaker& patterns);

} // namespace OVS
