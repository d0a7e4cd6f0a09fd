// Looks for the period of a frame in its normalised autocorrelation.
#pragma once

#include <span>

namespace Engine {

struct PitchEstimate {
    float lag = 0;  // samples; without a peak, where the zero-lag lobe ends
    float peak = 0; // height of the best peak, without the favour of the expected lag; 0: there is none
};

// Searches the lags from `lowestLag` to two before the end of `c`. `expectedLag` favours peaks near it; 0:
// none.
PitchEstimate searchPitch(std::span<const float> c, int lowestLag, float expectedLag) noexcept;

// 0 voiced .. 1 unvoiced, from the height of the peak and the energy r[0].
float unvoicedAmount(float peak, float energy, float scale) noexcept;

} // namespace Engine
