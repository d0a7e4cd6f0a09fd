// Blends a source over the rows of a surface, as far as coverage and mask let. What the rasteriser's sweep calls.
#pragma once

#include "drawing/Canvas.h"
#include "drawing/Colour.h"
#include "drawing/Shading.h"
#include "drawing/Surface.h"

#include <algorithm>

namespace Drawing {

template <class Source, bool masked>
class Blending {
public:
    // `opacity` in 0..255, on top of the source's own.
    Blending(const SurfaceView& target, Source source, unsigned opacity, const Mask* mask)
        : target_(target), source_(source), mask_(mask), opacity_(opacity),
          opaque_(source.isOpaque() && opacity == 255 && !masked) {}

    unsigned steps() const { return source_.steps(); }
    void row(int y) {
        pixels_ = target_.row(y);
        source_.row(y);
        if constexpr (masked) {
            maskRow_ = mask_->row(y);
        }
    }

    void cell(int x, unsigned coverage) { blend(x, multiply255(coverage, opacity_)); }

    void span(int x, int length, unsigned coverage) {
        Pixel* const pixels = pixels_;
        const int end = x + length;
        if (opaque_ && coverage == 255) {
            for (int i = x; i < end; ++i) {
                pixels[i] = source_.at(i);
            }
            return;
        }
        const unsigned strength = multiply255(coverage, opacity_);
        if constexpr (!masked) {
            if (strength == 255) {
                for (int i = x; i < end; ++i) {
                    pixels[i] = over(source_.at(i), pixels[i]);
                }
                return;
            }
        }
        for (int i = x; i < end; ++i) {
            blend(i, strength);
        }
    }

private:
    void blend(int x, unsigned strength) {
        if constexpr (masked) {
            strength = multiply255(strength, maskRow_[x]);
        }
        pixels_[x] = over(scaled(source_.at(x), strength), pixels_[x]);
    }

    SurfaceView target_;
    Source source_;
    const Mask* mask_;
    const std::uint8_t* maskRow_ = nullptr;
    Pixel* pixels_ = nullptr;
    unsigned opacity_;
    bool opaque_;
};

// One colour: what it is worth over a row of equal coverage is worked out once.
template <>
inline void Blending<SolidSource, false>::span(int x, int length, unsigned coverage) {
    Pixel* const pixels = pixels_ + x;
    const Pixel colour = scaled(source_.colour, multiply255(coverage, opacity_));
    if (alphaOf(colour) == 255) {
        std::fill_n(pixels, length, colour);
        return;
    }
    const unsigned rest = 255 - alphaOf(colour);
    for (int i = 0; i < length; ++i) {
        pixels[i] = colour + scaled(pixels[i], rest);
    }
}

// Puts the source in the place of what is there.
template <class Source>
void replace(const SurfaceView& target, Source source, unsigned opacity, const Mask* mask) {
    for (int y = 0; y < target.height; ++y) {
        Pixel* const pixels = target.row(y);
        const std::uint8_t* const maskRow = mask ? mask->row(y) : nullptr;
        source.row(y);
        for (int x = 0; x < target.width; ++x) {
            const Pixel pixel = scaled(source.at(x), opacity);
            const unsigned part = maskRow ? maskRow[x] : 255;
            pixels[x] = part == 255 ? pixel : scaled(pixel, part) + scaled(pixels[x], 255 - part);
        }
    }
}

} // namespace Drawing
