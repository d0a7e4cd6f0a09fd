// The all-pole filter that the excitation is driven through: y[n] = x[n] + sum of c[k] y[n-k], k
// = 1..order-1, for both channels. What it remembers of its output is clamped, what it puts out is not.
#pragma once

#include "engine/LinearPrediction.h"
#include "engine/Simd.h"

#include <array>
#include <span>

namespace Engine {

class SynthesisFilter {
public:
    static constexpr int kMaxRun = 256; // samples a call

    // Forgets the output so far, and the coefficients: what goes in comes out.
    void clear() noexcept;

    // c[0], which is 1, and the others of a new frame. The history stays.
    void setCoefficients(std::span<const float> c) noexcept;

    // `signal` holds up to kMaxRun pairs of left and right and is replaced by the output. An output sample
    // does not depend on how the signal is cut into calls, to the last bit.
    void process(float* signal, int count) noexcept;

private:
    template <int Pairs>
    bool processVectors(float* signal, float* history) const noexcept;
    template <std::size_t Pairs>
    void addPast(Float4 (&y)[Pairs], const float* history) const noexcept;
    template <std::size_t Pairs>
    void addRecent(Float4 (&y)[Pairs], Float4 before) const noexcept;
    void processOne(float* signal, float* history) const noexcept;

    static constexpr int kLanes = 4;
    static constexpr int kUnroll = 4;
    static constexpr int kTaps = kMaxOrder + 12; // with zeros behind the last, for vectors that reach beyond

    // Each coefficient in four lanes.
    alignas(16) std::array<float, kLanes * kTaps> c_{};
    int last_ = 0;       // the highest k that counts
    int vectorLast_ = 1; // the same rounded up, 1 more than a multiple of kUnroll
    // Pairs of left and right, straight: the newest kTaps go to the front behind each call.
    alignas(16) std::array<float, 2 * (kTaps + kMaxRun)> history_{};
};

} // namespace Engine
