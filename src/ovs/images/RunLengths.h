// Run-length coded pictures. A row is a sequence of runs: transparent ones, which cost nothing to draw, runs
// of one colour, of opaque pixels (copied), and of others (blended). Rows are found by themselves, so a frame
// of a film or a dirty rectangle is drawn without touching the rest.
#pragma once

#include "drawing/Surface.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Images {

class ColourRuns {
public:
    explicit ColourRuns(const Drawing::ConstSurfaceView& picture);

    int width() const { return width_; }
    int height() const { return height_; }
    std::size_t bytes() const { return (starts_.size() + words_.size()) * sizeof(std::uint32_t); }

    // Draws the columns from..to (exclusive) of row `y`, beginning at `out`. `opacity` in 0..255.
    void drawRow(int y, int from, int to, Drawing::Pixel* out, unsigned opacity) const;

private:
    int width_;
    int height_;
    std::vector<std::uint32_t> starts_; // of each row in words_
    std::vector<std::uint32_t> words_;
};

class MaskRuns {
public:
    explicit MaskRuns(const Drawing::ConstSurfaceView& alphaOf);

    int width() const { return width_; }
    int height() const { return height_; }
    std::size_t bytes() const { return starts_.size() * sizeof(std::uint32_t) + data_.size(); }

    void drawRow(int y, int from, int to, Drawing::Pixel* out, Drawing::Pixel colour) const;

private:
    int width_;
    int height_;
    std::vector<std::uint32_t> starts_;
    std::vector<std::uint8_t> data_;
};

} // namespace Images
