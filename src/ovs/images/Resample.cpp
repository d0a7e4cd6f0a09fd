#include "images/Resample.h"

#include "drawing/Colour.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Images {

namespace {

using Channels = std::array<float, 4>;

// Which pixels of one side make a pixel of the other, and how much of each; the weights add up to 1.
struct Share {
    int first = 0;
    std::vector<float> weights;
};

std::vector<Share> averages(int from, int to) {
    std::vector<Share> shares(static_cast<std::size_t>(to));
    const double step = static_cast<double>(from) / to;
    for (int i = 0; i < to; ++i) {
        const double begin = i * step;
        const double end = std::min<double>(begin + step, from);
        Share& share = shares[static_cast<std::size_t>(i)];
        share.first = std::min(static_cast<int>(begin), from - 1);
        for (int at = share.first; at < from && at < end - 1e-9; ++at) {
            const double covered = std::min(end, at + 1.0) - std::max(begin, static_cast<double>(at));
            share.weights.push_back(static_cast<float>(covered / step));
        }
    }
    return shares;
}

std::vector<Share> mixtures(int from, int to) {
    std::vector<Share> shares(static_cast<std::size_t>(to));
    for (int i = 0; i < to; ++i) {
        const double centre = std::clamp((i + 0.5) * from / to - 0.5, 0.0, from - 1.0);
        Share& share = shares[static_cast<std::size_t>(i)];
        share.first = static_cast<int>(centre);
        const auto second = static_cast<float>(centre - share.first);
        share.weights = {1.0F - second};
        if (second > 0.0F) {
            share.weights.push_back(second);
        }
    }
    return shares;
}

std::vector<Share> sharesOf(int from, int to) {
    return to < from ? averages(from, to) : mixtures(from, to);
}

Drawing::Pixel pixelOf(const Channels& sum) {
    const auto level = [](float value) { return static_cast<unsigned>(value + 0.5F); };
    const unsigned alpha = std::min(level(sum[0]), 255U);
    const auto colour = [&](std::size_t channel) { return std::min(level(sum[channel]), alpha); };
    return Drawing::pixelOf(alpha, colour(1), colour(2), colour(3));
}

class Rows {
public:
    Rows(const Drawing::ConstSurfaceView& picture, const std::vector<Share>& columns)
        : picture_(picture), columns_(columns) {}

    // Row `y` of the picture at its new width. The one of the call before stays as it is.
    const std::vector<Channels>& at(int y) {
        for (const Row& row : rows_) {
            if (row.y == y) {
                return row.pixels;
            }
        }
        Row& row = rows_[next_];
        next_ = 1 - next_;
        row.y = y;
        row.pixels.resize(columns_.size());
        const Drawing::Pixel* source = picture_.row(y);
        for (std::size_t x = 0; x < columns_.size(); ++x) {
            Channels sum = {};
            const Drawing::Pixel* pixel = source + columns_[x].first;
            for (const float weight : columns_[x].weights) {
                sum[0] += weight * static_cast<float>(Drawing::alphaOf(*pixel));
                sum[1] += weight * static_cast<float>(Drawing::redOf(*pixel));
                sum[2] += weight * static_cast<float>(Drawing::greenOf(*pixel));
                sum[3] += weight * static_cast<float>(Drawing::blueOf(*pixel));
                ++pixel;
            }
            row.pixels[x] = sum;
        }
        return row.pixels;
    }

private:
    struct Row {
        int y = -1;
        std::vector<Channels> pixels;
    };
    Drawing::ConstSurfaceView picture_;
    const std::vector<Share>& columns_;
    std::array<Row, 2> rows_;
    std::size_t next_ = 0;
};

void resample(const Drawing::ConstSurfaceView& picture, const std::vector<Share>& columns,
              const std::vector<Share>& lines, const Drawing::SurfaceView& target) {
    Rows rows(picture, columns);
    std::vector<Channels> sums(columns.size());
    for (int y = 0; y < target.height; ++y) {
        const Share& line = lines[static_cast<std::size_t>(y)];
        std::ranges::fill(sums, Channels{});
        for (std::size_t i = 0; i < line.weights.size(); ++i) {
            const std::vector<Channels>& row = rows.at(line.first + static_cast<int>(i));
            for (std::size_t x = 0; x < sums.size(); ++x) {
                for (std::size_t channel = 0; channel < 4; ++channel) {
                    sums[x][channel] += line.weights[i] * row[x][channel];
                }
            }
        }
        std::ranges::transform(sums, target.row(y), pixelOf);
    }
}

} // namespace

Drawing::Surface resampledFrames(const Drawing::ConstSurfaceView& picture, int frames, int width,
                                 int height) {
    Drawing::checkSurfaceSize(width, std::int64_t{height} * frames);
    Drawing::Surface result(width, height * frames);
    const int frameHeight = picture.height / frames;
    if (result.isEmpty() || picture.isEmpty() || frameHeight == 0) {
        return result;
    }
    if (width == picture.width && height == frameHeight) {
        for (int y = 0; y < result.height(); ++y) {
            std::copy_n(picture.row(y), width, result.view().row(y));
        }
        return result;
    }
    const std::vector<Share> columns = sharesOf(picture.width, width);
    const std::vector<Share> lines = sharesOf(frameHeight, height);
    for (int frame = 0; frame < frames; ++frame) {
        resample(picture.part({0, frame * frameHeight, picture.width, frameHeight}), columns, lines,
                 result.view().part({0, frame * height, width, height}));
    }
    return result;
}

Drawing::Surface resampled(const Drawing::ConstSurfaceView& picture, int width, int height) {
    return resampledFrames(picture, 1, width, height);
}

} // namespace Images
