// What may enter the engine: hosts send anything.
#pragma once

namespace Engine {

// Copies `count` samples, with zero for what is not a number, infinite or denormal. Returns whether any of
// them is louder than kLoudestInput. `out` has room for three more samples, which become zero.
bool copyFinite(const float* in, float* out, int count) noexcept;

// 120 dB above full scale: finite input beyond it would overflow where the analysis squares its squares.
inline constexpr float kLoudestInput = 1e6f;

// Brings `count` finite samples within kLoudestInput.
void limitLoudness(float* samples, int count) noexcept;

} // namespace Engine
