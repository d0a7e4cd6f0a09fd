#include "engine/ParameterGlide.h"

#include <cmath>
#include <numbers>

namespace Engine {

namespace {

constexpr float kDeadBand = 0.001f;     // moves this small are over at once
constexpr float kJumpSlope = 4.016064f; // 1 / 0.249: so far beyond the dead band, one block takes it all

} // namespace

float glide(float current, float target, int samples, double hostRate) noexcept {
    const float d = target - current;
    const float distance = std::fabs(d);
    if (distance < kDeadBand) {
        return target;
    }
    // A one-pole glide of the time constant 1 / (2 pi) s, quickened by the distance.
    const auto a = static_cast<float>(std::exp(-2 * std::numbers::pi * samples / hostRate));
    const float c = 1 - a + (distance - kDeadBand) * a * kJumpSlope;
    return c < 1 ? current + c * d : target;
}

void glide(GlidingParameters& current, const GlidingParameters& target, int samples,
           double hostRate) noexcept {
    current.pitch = glide(current.pitch, target.pitch, samples, hostRate);
    current.tracking = glide(current.tracking, target.tracking, samples, hostRate);
    current.detune = glide(current.detune, target.detune, samples, hostRate);
    current.noiseAdjust = glide(current.noiseAdjust, target.noiseAdjust, samples, hostRate);
}

} // namespace Engine
