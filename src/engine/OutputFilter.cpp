#include "engine/OutputFilter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Engine {

namespace {

constexpr float kStateLimit = 10;       // whatever comes in, the states cannot run away
constexpr double kHighestCorner = 0.45; // of the rate

} // namespace

OutputFilter::Coefficients OutputFilter::highPass(double cornerHz, double rate) {
    const double corner = std::min(cornerHz / rate, kHighestCorner);
    const double s1 = 0.5 * std::sin(2 * std::numbers::pi * corner);
    const double s2 = std::sin(std::numbers::pi * corner);
    const double a = 1 / (s1 * std::numbers::sqrt2 + 1);
    const double e = a * s2 * s2;
    const double m = 1 - s2 * s2;
    return {.f = static_cast<float>(2 * std::sqrt(e)),
            .q = static_cast<float>((1 - a) / std::sqrt(e)),
            .inputGain = static_cast<float>((a - e) / m),
            .outputGain = static_cast<float>(m)};
}

void OutputFilter::process(const Coefficients& c, float* signal, int count) noexcept {
    const Float4 f = splat(c.f);
    const Float4 q = splat(c.q);
    const Float4 k = splat(c.inputGain);
    const Float4 g = splat(c.outputGain);
    Float4 low = low_;
    Float4 band = band_;
    for (float* pair = signal; pair != signal + 2 * count; pair += 2) {
        low = clamped(low, kStateLimit);
        band = clamped(band, kStateLimit);
        low = low + f * band;
        const Float4 high = k * loadPair(pair) - low - q * band;
        band = high * f + band;
        storePair(pair, high * g);
    }
    low_ = low;
    band_ = band;
}

} // namespace Engine
