// Pictures at another size: each pixel of the smaller grid is the average of what it covers; towards a larger
// one, neighbours are mixed.
#pragma once

#include "drawing/Surface.h"

namespace Images {

// Throws SurfaceError for a size that cannot be had.
Drawing::Surface resampled(const Drawing::ConstSurfaceView& picture, int width, int height);

// Frames that lie one below the other, each by itself: none shows at the edge of another. The height is that
// of a frame.
Drawing::Surface resampledFrames(const Drawing::ConstSurfaceView& picture, int frames, int width, int height);

} // namespace Images
