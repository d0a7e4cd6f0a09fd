// Smoothing of the parameters that would zip: once a block, small moves glide and jumps of about a quarter of
// the range are taken at once.
#pragma once

namespace Engine {

struct GlidingParameters {
    float pitch = 0.5f;
    float tracking = 0.5f;
    float detune = 0;
    float noiseAdjust = 0.5f;

    bool operator==(const GlidingParameters&) const = default;
};

// The value after a block of `samples`, all normalised.
float glide(float current, float target, int samples, double hostRate) noexcept;

void glide(GlidingParameters& current, const GlidingParameters& target, int samples,
           double hostRate) noexcept;

} // namespace Engine
