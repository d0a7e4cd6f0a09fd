#include "engine/PitchSearch.h"

#include "engine/Simd.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace Engine {

namespace {

constexpr float kLeastPeak = 1e-5f;
constexpr float kFlat = 1e-5f; // neighbours closer than this to the peak do not move it

// Leans towards the higher neighbour, by the neighbours' difference over twice the drop to the lower one:
// one-sided on purpose, and not the vertex of a parabola.
float peakOffset(float prev, float peak, float next) {
    if (prev > next) {
        return peak - next < kFlat ? 0 : (next - prev) / (2 * (peak - next));
    }
    return prev - peak >= -kFlat ? 0 : (prev - next) / (2 * (prev - peak));
}

// The first lag from `from` on that is higher than both its neighbours, or the last lag.
int nextPeak(std::span<const float> c, int from) {
    const int last = static_cast<int>(c.size()) - 1;
    for (; from + 4 <= last; from += 4) {
        const float* const at = &c[static_cast<std::size_t>(from)];
        const Float4 here = load(at);
        const int peaks =
            laneBits((here > splat(kLeastPeak)) & (here > load(at - 1)) & (here > load(at + 1)));
        if (peaks != 0) {
            return from + std::countr_zero(static_cast<unsigned>(peaks));
        }
    }
    const auto isPeak = [c](std::size_t i) {
        return c[i] > kLeastPeak && c[i] > c[i - 1] && c[i] > c[i + 1];
    };
    while (from < last && !isPeak(static_cast<std::size_t>(from))) {
        ++from;
    }
    return from;
}

float favour(int lag, float expectedLag) {
    const float y = (static_cast<float>(lag) - expectedLag) * 0.25f / expectedLag;
    return 1 + std::exp(std::max(-2 * y * y, -10.0f));
}

} // namespace

PitchEstimate searchPitch(std::span<const float> c, int lowestLag, float expectedLag) noexcept {
    const int last = static_cast<int>(c.size()) - 1;
    int i = std::min(lowestLag, last);
    while (i < last && c[static_cast<std::size_t>(i)] > 0) {
        ++i;
    }
    PitchEstimate best{.lag = static_cast<float>(i)};
    float bestScore = 0;
    for (i = nextPeak(c, std::max(i, 1)); i < last; i = nextPeak(c, i + 1)) {
        const float* const at = &c[static_cast<std::size_t>(i)];
        const float height = at[0] + std::fabs(at[-1] - at[1]) / 2;
        const float score = expectedLag > 0 ? height * favour(i, expectedLag) : height;
        if (score >= bestScore) { // of equals the longer lag
            bestScore = score;
            best = {static_cast<float>(i) + peakOffset(at[-1], at[0], at[1]), height};
        }
    }
    return best;
}

float unvoicedAmount(float peak, float energy, float scale) noexcept {
    const float amount = (1 - peak / energy) * scale;
    return amount > 0 ? std::min(amount, 1.0f) : 0;
}

} // namespace Engine
