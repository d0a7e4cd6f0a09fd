// The high-pass that ends the internal path: a state-variable section for both channels, Butterworth at its
// corner and of unity gain at half the internal rate.
#pragma once

#include "engine/Simd.h"

namespace Engine {

class OutputFilter {
public:
    struct Coefficients {
        float f = 0;          // state to state, per sample
        float q = 0;          // damping
        float inputGain = 0;  // k
        float outputGain = 0; // g
    };

    // The corner is kept below half the rate, where the section has none.
    static Coefficients highPass(double cornerHz, double rate);

    void clear() noexcept { low_ = band_ = Float4{}; }

    // `signal` holds `count` pairs of left and right and is replaced by the output.
    void process(const Coefficients& c, float* signal, int count) noexcept;

private:
    // Left and right in the lower lanes.
    Float4 low_{};
    Float4 band_{};
};

} // namespace Engine
