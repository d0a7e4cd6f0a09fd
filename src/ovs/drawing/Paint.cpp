#include "drawing/Paint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace Drawing {

namespace {

// A colour's channels in 1/65536 steps, so that a table is filled by additions.
struct Channels {
    std::array<std::int32_t, 4> values{};

    explicit Channels(Pixel pixel) {
        for (unsigned i = 0; i < 4; ++i) {
            values[i] = static_cast<std::int32_t>(pixel >> (8 * i) & 0xFF) << 16;
        }
    }
    Channels plus(const Channels& step, double times) const {
        Channels result = *this;
        for (unsigned i = 0; i < 4; ++i) {
            result.values[i] += static_cast<std::int32_t>(std::lround(step.values[i] * times));
        }
        return result;
    }
    Pixel rounded() const {
        const std::int32_t alpha = (values[3] + 0x8000) >> 16;
        Pixel pixel = static_cast<Pixel>(alpha) << 24;
        for (unsigned i = 0; i < 3; ++i) { // the steps' own rounding must not lift a channel above alpha
            pixel |= static_cast<Pixel>(std::min((values[i] + 0x8000) >> 16, alpha)) << (8 * i);
        }
        return pixel;
    }
};

} // namespace

GradientTable::GradientTable(std::vector<GradientStop> stops) : stops_(std::move(stops)) {
    constexpr double kLast = kSize - 1;
    int done = 0;
    const auto fillUpTo = [&](double position, Pixel colour) {
        for (; done < kSize && done < position * kLast; ++done) {
            colours_[done] = colour;
        }
    };
    fillUpTo(stops_.front().position, stops_.front().colour);
    for (std::size_t i = 1; i < stops_.size(); ++i) {
        const GradientStop& from = stops_[i - 1];
        const GradientStop& to = stops_[i];
        if (!(to.position > from.position)) {
            continue;
        }
        const double entries = (to.position - from.position) * kLast;
        const Channels first(from.colour);
        Channels step(to.colour);
        for (unsigned c = 0; c < 4; ++c) {
            step.values[c] -= first.values[c];
        }
        Channels colour = first.plus(step, (done - from.position * kLast) / entries);
        for (unsigned c = 0; c < 4; ++c) {
            step.values[c] = static_cast<std::int32_t>(step.values[c] / entries);
        }
        for (; done < kSize && done < to.position * kLast; ++done) {
            colours_[done] = colour.rounded();
            for (unsigned c = 0; c < 4; ++c) {
                colour.values[c] += step.values[c];
            }
        }
    }
    std::fill(colours_ + done, colours_ + kSize, stops_.back().colour);
    opaque_ = std::all_of(stops_.begin(), stops_.end(),
                          [](const GradientStop& stop) { return alphaOf(stop.colour) == 255; });
}

} // namespace Drawing
