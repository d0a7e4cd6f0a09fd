// What a specification changes in the pixels of a picture.
#pragma once

#include "drawing/Surface.h"

namespace Images {

// Raises the colour channels (as they are without alpha) to the power `gamma`, or for a mask its alpha; then
// takes everything times `opacity`, which is in 0..1.
void adjust(const Drawing::SurfaceView& pixels, double gamma, double opacity, bool isMask);

} // namespace Images
