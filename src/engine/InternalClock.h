// The fractional clock that steps the internal rate along the host's samples, and the way from one rate to
// the other and back.
#pragma once

#include "engine/RateConfiguration.h"

#include <array>
#include <cstdint>

namespace Engine {

class InternalClock {
public:
    static constexpr int kMaxRun = 256; // host samples a call

    // Forgets the input and the output that was held; the clock itself goes on.
    void clearOutput() noexcept { held_ = {}; }

    // Finds the ticks among the next `samples` host samples and returns their number, at most `samples`.
    int advance(const RateConfiguration& rate, int samples) noexcept;

    // The host sample that reached a tick.
    int position(int tick) const noexcept { return ticks_[static_cast<std::size_t>(tick)].position; }

    // The input at the `ticks` ticks found last, as pairs, from the run of each channel. One sample before
    // each run is read, the last of the run before.
    void sampleInput(const float* left, const float* right, int ticks, float* pairs) const noexcept;

    // Spreads the internal output of these ticks over `samples` host samples, pairs both.
    void holdOutput(const float* pairs, int ticks, int samples, float* out) noexcept;

private:
    struct Tick {
        std::int32_t position;
        float fraction; // how far the tick lies before its host sample, in host samples, 0..1
    };

    // The first tick comes a whole period after the start: at equal rates every tick falls on its host
    // sample.
    float countdown_ = 1; // internal samples until the next tick
    std::array<Tick, kMaxRun> ticks_{};
    std::array<float, 2> held_{};
};

} // namespace Engine
