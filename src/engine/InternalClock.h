// The fractional clock that steps the internal rate along the host's samples, and the way from one rate to
// the other and back.
#pragma once

#include "engine/RateConfiguration.h"
#include "engine/Simd.h"

#include <array>
#include <cstdint>

namespace Engine {

class InternalClock {
public:
    static constexpr int kMaxRun = 256; // host samples a call

    // For another rate. The first tick comes a whole period later: at equal rates every tick then falls on
    // its host sample, whenever the rate was chosen.
    void clear() noexcept {
        countdown_ = 1;
        held_ = {};
    }

    // Finds the ticks among the next `samples` host samples and returns their number, at most `samples`.
    int advance(const RateConfiguration& rate, int samples) noexcept;

    // The host sample that reached a tick.
    int position(int tick) const noexcept {
        return equalRates_ ? tick : ticks_[static_cast<std::size_t>(tick)].position;
    }

    // The input at the `ticks` ticks found last, as pairs, from the run of each channel. One sample before
    // each run is read, the last of the run before.
    void sampleInput(const float* left, const float* right, int ticks, float* pairs) const noexcept;

    // Spreads the internal output of these ticks over `samples` host samples, pairs both.
    void holdOutput(const float* pairs, int ticks, int samples, float* out) noexcept;

private:
    Float4 holdTicks(Float4 held, const float* pairs, int ticks, int samples, float* out) const noexcept;

    struct Tick {
        std::int32_t position;
        float fraction; // how far the tick lies before its host sample, in host samples, 0..1
    };

    float countdown_ = 1; // internal samples until the next tick
    std::array<Tick, kMaxRun> ticks_{};
    bool equalRates_ = false; // of the ticks found last: each falls on its host sample
    std::array<float, 2> held_{};
};

} // namespace Engine
