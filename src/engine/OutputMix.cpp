#include "engine/OutputMix.h"

#include "engine/Simd.h"

#include <algorithm>
#include <cmath>

namespace Engine {

namespace {

constexpr double kBypassFadeSeconds = 0.01;

// The values at four samples of a line.
Float4 lineAt(float start, float step, int sample) noexcept {
    const auto first = static_cast<float>(sample);
    return splat(start) + splat(step) * (splat(first) + Float4{0, 1, 2, 3});
}

} // namespace

struct OutputMix::Four {
    Float4 left;
    Float4 right;
};

OutputMix::OutputMix(double hostRate) noexcept
    : bypassSpeed_(static_cast<float>(1 / (kBypassFadeSeconds * hostRate))) {}

void OutputMix::Ramp::begin(float newTarget, int samples) noexcept {
    target = newTarget;
    step = (target - value) / static_cast<float>(samples);
}

void OutputMix::beginBlock(float mix, bool bypassed, int samples) noexcept {
    if (samples == 0) {
        return;
    }
    const float wet = std::sqrt(mix); // equal power
    const float dry = std::sqrt(1 - mix);
    const float bypassTarget = bypassed ? 1 : 0;
    if (!started_) {
        started_ = true;
        wet_.value = wet;
        dry_.value = dry;
        bypass_ = bypassTarget;
    }
    wet_.begin(wet, samples);
    dry_.begin(dry, samples);
    bypassStep_ = bypass_ < bypassTarget ? bypassSpeed_ : bypass_ > bypassTarget ? -bypassSpeed_ : 0;
    position_ = 0;
}

void OutputMix::endBlock() noexcept {
    wet_.value = wet_.target;
    dry_.value = dry_.target;
}

bool OutputMix::needsDry() const noexcept {
    return !dry_.isZero() || bypassing();
}

// The wet signal alone, by fours as long as they last: what plays most of the time. Returns how many samples
// it made.
int OutputMix::fade(const Signals& signals, float* left, float* right, int count) const noexcept {
    const Float4 gain = splat(wet_.value);
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        const Float4 early = load(signals.wet + 2 * i);
        const Float4 late = load(signals.wet + 2 * i + 4);
        store(left + i, gain * __builtin_shufflevector(early, late, 0, 2, 4, 6));
        store(right + i, gain * __builtin_shufflevector(early, late, 1, 3, 5, 7));
    }
    return i;
}

void OutputMix::mixFour(const Signals& signals, int i, Four& out) const noexcept {
    const Float4 early = load(signals.wet + 2 * i);
    const Float4 late = load(signals.wet + 2 * i + 4);
    const Float4 wetGain = lineAt(wet_.value, wet_.step, position_ + i);
    out.left = wetGain * __builtin_shufflevector(early, late, 0, 2, 4, 6);
    out.right = wetGain * __builtin_shufflevector(early, late, 1, 3, 5, 7);
    if (!dry_.isZero()) {
        const Float4 gain = lineAt(dry_.value, dry_.step, position_ + i);
        Float4 left = load(signals.dry[0] + i);
        Float4 right = load(signals.dry[1] + i);
        if (signals.monoDry) {
            left = right = (left + right) * splat(0.5f);
        }
        out.left += gain * left;
        out.right += gain * right;
    }
    if (bypassing()) {
        blendBypass(signals, i, out);
    }
}

void OutputMix::blendBypass(const Signals& signals, int i, Four& out) const noexcept {
    const Float4 one = splat(1);
    const Float4 bypass = smaller(larger(lineAt(bypass_ + bypassStep_, bypassStep_, i), Float4{}), one);
    out.left = out.left * (one - bypass) + load(signals.dry[0] + i) * bypass;
    out.right = out.right * (one - bypass) + load(signals.dry[1] + i) * bypass;
}

void OutputMix::process(const Signals& signals, float* const* out, int offset, int count) noexcept {
    float* const left = out[0] + offset;
    float* const right = out[1] + offset;
    const bool plain = !needsDry() && wet_.step == 0;
    for (int i = plain ? fade(signals, left, right, count) : 0; i < count; i += 4) {
        Four four;
        mixFour(signals, i, four);
        if (i + 4 <= count) {
            store(left + i, four.left);
            store(right + i, four.right);
        } else {
            for (int lane = 0; lane < count - i; ++lane) {
                left[i + lane] = four.left[lane];
                right[i + lane] = four.right[lane];
            }
        }
    }
    bypass_ = std::clamp(bypass_ + bypassStep_ * static_cast<float>(count), 0.0f, 1.0f);
    position_ += count;
}

} // namespace Engine
