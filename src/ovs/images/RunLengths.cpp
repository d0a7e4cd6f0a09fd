#include "images/RunLengths.h"

#include "drawing/Colour.h"
#include "images/MaskPixels.h"

#include <algorithm>
#include <cstring>

namespace Images {

namespace {

enum class Run : unsigned { skip, plain, copy, blend };

// A run of equal pixels is worth a word of its own from here on; a shorter one joins its neighbours.
constexpr int kShortestRun = 4;

// How many pixels (or bytes) from x are the same.
template <class Value>
int equalRun(const Value* row, int x, int width) {
    int end = x + 1;
    while (end < width && row[end] == row[x]) {
        ++end;
    }
    return end - x;
}

// How many from x do not form runs worth their word.
template <class Value>
int mixedRun(const Value* row, int x, int width) {
    int end = x;
    while (end < width) {
        const int equal = equalRun(row, end, width);
        if (equal >= kShortestRun) {
            break;
        }
        end += equal;
    }
    return end - x;
}

// The part of a run at `at` that lies within from..to.
struct Visible {
    Visible(int at, int length, int from, int to)
        : begin(std::max(at, from)), end(std::min(at + length, to)) {}
    int begin;
    int end;
};

// Colour runs are words: the kind above, the length below.
constexpr int kKindShift = 30;
constexpr std::uint32_t kLengthMask = (1U << kKindShift) - 1;

std::uint32_t runWord(Run run, int length) {
    return static_cast<std::uint32_t>(run) << kKindShift | static_cast<std::uint32_t>(length);
}

// Mask runs are two bytes, the longest therefore 16383 pixels.
constexpr int kMaskKindShift = 14;
constexpr int kLongestMaskRun = (1 << kMaskKindShift) - 1;

void appendMaskRun(std::vector<std::uint8_t>& data, Run run, int length) {
    const unsigned token = static_cast<unsigned>(run) << kMaskKindShift | static_cast<unsigned>(length);
    data.push_back(static_cast<std::uint8_t>(token >> 8));
    data.push_back(static_cast<std::uint8_t>(token & 0xFF));
}

} // namespace

ColourRuns::ColourRuns(const Drawing::ConstSurfaceView& picture)
    : width_(picture.width), height_(picture.height) {
    starts_.reserve(static_cast<std::size_t>(height_));
    for (int y = 0; y < height_; ++y) {
        starts_.push_back(static_cast<std::uint32_t>(words_.size()));
        const Drawing::Pixel* row = picture.row(y);
        for (int x = 0; x < width_;) {
            int length = equalRun(row, x, width_);
            if (length >= kShortestRun || x + length == width_) {
                words_.push_back(runWord(row[x] == 0 ? Run::skip : Run::plain, length));
                if (row[x] != 0) {
                    words_.push_back(row[x]);
                }
            } else {
                length = mixedRun(row, x, width_);
                const bool opaque = std::all_of(row + x, row + x + length, [](Drawing::Pixel pixel) {
                    return Drawing::alphaOf(pixel) == 255;
                });
                words_.push_back(runWord(opaque ? Run::copy : Run::blend, length));
                words_.insert(words_.end(), row + x, row + x + length);
            }
            x += length;
        }
    }
    words_.shrink_to_fit();
}

void ColourRuns::drawRow(int y, int from, int to, Drawing::Pixel* out, unsigned opacity) const {
    const std::uint32_t* word = words_.data() + starts_[static_cast<std::size_t>(y)];
    for (int at = 0; at < to;) {
        const auto run = static_cast<Run>(*word >> kKindShift);
        const auto length = static_cast<int>(*word & kLengthMask);
        ++word;
        const Visible visible(at, length, from, to);
        Drawing::Pixel* target = out + (visible.begin - from);
        const int count = visible.end - visible.begin;
        switch (run) {
        case Run::skip:
            break;
        case Run::plain: {
            const Drawing::Pixel pixel = Drawing::scaled(*word, opacity);
            if (count > 0 && Drawing::alphaOf(pixel) == 255) {
                std::fill_n(target, count, pixel);
            } else {
                for (int i = 0; i < count; ++i) {
                    target[i] = Drawing::over(pixel, target[i]);
                }
            }
            ++word;
            break;
        }
        case Run::copy:
        case Run::blend: {
            const std::uint32_t* source = word + (visible.begin - at);
            if (count > 0 && run == Run::copy && opacity == 255) {
                std::copy_n(source, count, target);
            } else if (opacity == 255) {
                for (int i = 0; i < count; ++i) {
                    target[i] = Drawing::over(source[i], target[i]);
                }
            } else {
                for (int i = 0; i < count; ++i) {
                    target[i] = Drawing::over(Drawing::scaled(source[i], opacity), target[i]);
                }
            }
            word += length;
            break;
        }
        }
        at += length;
    }
}

MaskRuns::MaskRuns(const Drawing::ConstSurfaceView& alphaOf)
    : width_(alphaOf.width), height_(alphaOf.height) {
    const MaskPixels mask(alphaOf);
    starts_.reserve(static_cast<std::size_t>(height_));
    for (int y = 0; y < height_; ++y) {
        starts_.push_back(static_cast<std::uint32_t>(data_.size()));
        const std::uint8_t* row = mask.row(y);
        for (int x = 0; x < width_;) {
            int length = equalRun(row, x, width_);
            if (length >= kShortestRun || x + length == width_) {
                length = std::min(length, kLongestMaskRun);
                appendMaskRun(data_, row[x] == 0 ? Run::skip : Run::plain, length);
                if (row[x] != 0) {
                    data_.push_back(row[x]);
                }
            } else {
                length = std::min(mixedRun(row, x, width_), kLongestMaskRun);
                appendMaskRun(data_, Run::blend, length);
                data_.insert(data_.end(), row + x, row + x + length);
            }
            x += length;
        }
    }
    data_.shrink_to_fit();
}

void MaskRuns::drawRow(int y, int from, int to, Drawing::Pixel* out, Drawing::Pixel colour) const {
    const std::uint8_t* data = data_.data() + starts_[static_cast<std::size_t>(y)];
    for (int at = 0; at < to;) {
        const auto run = static_cast<Run>(data[0] >> (kMaskKindShift - 8));
        const int length = (data[0] << 8 | data[1]) & kLongestMaskRun;
        data += 2;
        const Visible visible(at, length, from, to);
        Drawing::Pixel* target = out + (visible.begin - from);
        if (run == Run::plain) {
            const Drawing::Pixel pixel = Drawing::scaled(colour, *data++);
            for (int i = 0; i < visible.end - visible.begin; ++i) {
                target[i] = Drawing::over(pixel, target[i]);
            }
        } else if (run == Run::blend) {
            if (visible.begin < visible.end) {
                drawMaskRow(data, visible.begin - at, visible.end - at, target, colour);
            }
            data += length;
        }
        at += length;
    }
}

} // namespace Images
