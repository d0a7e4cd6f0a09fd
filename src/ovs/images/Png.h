// Reads PNG pictures from memory.
#pragma once

#include "drawing/Surface.h"

#include <string_view>

namespace Images {

struct Picture {
    Drawing::Surface pixels;
    int frames = 1; // one below the other
};

// A text entry "PixelStrip.Frames" of 2 or more says that the picture holds so many frames side by side; they
// come one below the other. Throws ImageError: "Error reading PNG image : " and why, "Image width
// incompatible with pixelstrip specification"; and SurfaceError for a strip that is too long.
Picture readPng(std::string_view bytes);

// What readPng does with frames that lie side by side.
Drawing::Surface verticalStrip(const Drawing::ConstSurfaceView& picture, int frames);

} // namespace Images
