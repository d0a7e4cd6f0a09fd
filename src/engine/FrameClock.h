// Says at which internal sample a new frame is analysed: where the phase, in frames, rises from below 0 to 0
// or above. Half a frame lies between a cleared clock and its first frame.
#pragma once

#include <cmath>

namespace Engine {

class FrameClock {
public:
    void clear() noexcept { phase_ = previous_ = -0.5f; }

    // The next sample begins a frame, whatever the step, and the following frames count from there.
    void restart() noexcept {
        phase_ = 0;
        previous_ = -0.5f;
    }

    // Follows the host's song position, given in frames. The phase of the previous sample stays what it was:
    // a frame that the position corrects by a hair is then neither lost nor analysed twice, and a leap across
    // the start of a frame analyses it.
    void follow(double frames) noexcept {
        if (!std::isfinite(frames)) {
            return;
        }
        phase_ = wrapped(static_cast<float>(frames - std::floor(frames + 0.5)));
    }

    // Steps through internal samples until one of them begins a frame or `samples` are through. Returns how
    // many it stepped; `frame` tells whether the last of them begins a frame.
    int advance(float step, int samples, bool& frame) noexcept {
        float phase = phase_;
        float previous = previous_;
        frame = false;
        int i = 0;
        while (i < samples && !frame) {
            phase = wrapped(phase + step);
            frame = previous < 0 && phase >= 0;
            previous = phase;
            ++i;
        }
        phase_ = phase;
        previous_ = previous;
        return i;
    }

private:
    static float wrapped(float phase) noexcept {
        while (phase >= 0.5f) {
            phase -= 1;
        }
        return phase;
    }

    float phase_ = -0.5f; // -0.5..0.5
    float previous_ = -0.5f;
};

} // namespace Engine
