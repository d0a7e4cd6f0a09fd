// A picture ready to be drawn, in one of the formats, of one or several frames below each other. Immutable:
// any number of views share it.
#pragma once

#include "drawing/Colour.h"
#include "drawing/Surface.h"
#include "images/MaskPixels.h"
#include "images/RunLengths.h"
#include "images/Specifications.h"

#include <cstddef>
#include <variant>

namespace Images {

class Image {
public:
    // The height is divided evenly among the frames.
    Image(Drawing::Surface pixels, Format format, int frames = 1);

    Format format() const { return static_cast<Format>(storage_.index()); }
    bool isMask() const { return format() == Format::mask || format() == Format::rlemask; }
    int width() const { return width_; }
    int height() const { return height_ / frames_; } // of a frame
    int frames() const { return frames_; }
    std::size_t bytes() const; // about what it takes in memory

    // All frames. Throws ImageError "Image is of incorrect type" unless the format is colour.
    Drawing::ConstSurfaceView pixels() const;

    struct Manner {
        int frame = 0;                           // brought to the nearest there is
        unsigned opacity = 255;                  // 0..255
        Drawing::Pixel colour = Drawing::kBlack; // of masks
    };

    // With its left top corner at x, y of the target; nothing outside of `clip` is touched.
    void draw(const Drawing::SurfaceView& target, const Drawing::IntRect& clip, int x, int y,
              const Manner& manner) const;
    void draw(const Drawing::SurfaceView& target, const Drawing::IntRect& clip, int x, int y) const {
        draw(target, clip, x, y, Manner());
    }

private:
    // In the order of Format.
    std::variant<Drawing::Surface, MaskPixels, ColourRuns, MaskRuns> storage_;
    int width_;
    int height_; // of all frames
    int frames_;
};

} // namespace Images
