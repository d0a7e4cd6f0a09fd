// Rectangles as layouts write them: each side an arithmetic expression over the enclosing area.
#pragma once

#include "notation/Document.h"
#include "quilt/Geometry.h"

namespace Quilt {

// `{ LEFT, TOP, WIDTH, HEIGHT }` in units, whole numbers, with the symbols l, t, w, h, r and b of the
// enclosing area, and $ for what a side is when it is left out or empty: 0 for left and top, the enclosing
// area's own width and height. An empty element leaves all four out.
//
// Throws std::runtime_error "View bounds has negative width and/or height", and what expressions throw.
Rectangle readBounds(const Stackbrace::Element& bounds, const Rectangle& enclosing);

} // namespace Quilt
