#include "drawing/Paint.h"

#include <algorithm>
#include <cmath>

namespace Drawing {

namespace {

Pixel mixed(Pixel from, Pixel to, double part) {
    const auto channel = [&](unsigned shift) {
        const double a = from >> shift & 0xFF;
        const double b = to >> shift & 0xFF;
        return static_cast<Pixel>(std::lround(a + (b - a) * part)) << shift;
    };
    return channel(24) | channel(16) | channel(8) | channel(0);
}

} // namespace

GradientTable::GradientTable(std::vector<GradientStop> stops) : stops_(std::move(stops)) {
    std::size_t next = 0; // the first stop beyond t
    for (int i = 0; i < kSize; ++i) {
        const double t = static_cast<double>(i) / (kSize - 1);
        while (next < stops_.size() && stops_[next].position <= t) {
            ++next;
        }
        if (next == 0) {
            colours_[i] = stops_.front().colour;
        } else if (next == stops_.size()) {
            colours_[i] = stops_.back().colour;
        } else {
            const GradientStop& from = stops_[next - 1];
            const GradientStop& to = stops_[next];
            colours_[i] =
                mixed(from.colour, to.colour, (t - from.position) / (to.position - from.position));
        }
        opaque_ = opaque_ && alphaOf(colours_[i]) == 255;
    }
}

} // namespace Drawing
