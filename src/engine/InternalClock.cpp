#include "engine/InternalClock.h"

#include "engine/Simd.h"

#include <algorithm>

namespace Engine {

int InternalClock::advance(const RateConfiguration& rate, int samples) noexcept {
    equalRates_ = rate.clockIncrement == 1 && countdown_ == 1;
    if (equalRates_) {
        return samples;
    }
    const float increment = rate.clockIncrement;
    const float scale = rate.clockScale;
    float countdown = countdown_;
    Tick* tick = ticks_.data();
    for (std::int32_t i = 0; i < samples; ++i) {
        countdown -= increment;
        if (countdown <= 0) {
            *tick++ = {i, -countdown * scale};
            countdown += 1;
        }
    }
    countdown_ = countdown;
    return static_cast<int>(tick - ticks_.data());
}

void InternalClock::sampleInput(const float* left, const float* right, int ticks,
                                float* pairs) const noexcept {
    if (equalRates_) {
        for (int i = 0; i < ticks; i += 4) {
            const Float4 l = load(left + i);
            const Float4 r = load(right + i);
            store(pairs + 2 * i, __builtin_shufflevector(l, r, 0, 4, 1, 5));
            store(pairs + 2 * i + 4, __builtin_shufflevector(l, r, 2, 6, 3, 7));
        }
        return;
    }
    for (int i = 0; i < ticks; ++i) {
        const auto [position, fraction] = ticks_[static_cast<std::size_t>(i)];
        const float* const l = left + position;
        const float* const r = right + position;
        pairs[2 * i] = l[0] + fraction * (l[-1] - l[0]);
        pairs[2 * i + 1] = r[0] + fraction * (r[-1] - r[0]);
    }
}

// Each internal output holds until the next. The host sample that a tick falls into holds the new one for the
// fraction since the tick and the old one before: so a tick that moves by a hair moves the output by a hair.
// The other way round, the steps would jitter by up to a sample, which is 12 to 27 dB more noise than this.
// At equal rates all that comes to one sample of delay.
void InternalClock::holdOutput(const float* pairs, int ticks, int samples, float* out) noexcept {
    Float4 held = loadPair(held_.data());
    if (equalRates_) {
        storePair(out, held);
        std::copy_n(pairs, 2 * (samples - 1), out + 2);
        held = loadPair(pairs + 2 * (samples - 1));
    } else {
        held = holdTicks(held, pairs, ticks, samples, out);
    }
    storePair(held_.data(), held);
}

Float4 InternalClock::holdTicks(Float4 held, const float* pairs, int ticks, int samples,
                                float* out) const noexcept {
    const auto fill = [out](int from, int to, Float4 pair) {
        const Float4 two = __builtin_shufflevector(pair, pair, 0, 1, 0, 1);
        for (int i = from; i < to; i += 2) { // one too many is overwritten later
            store(out + 2 * i, two);
        }
    };
    int at = 0;
    for (int i = 0; i < ticks; ++i) {
        const auto [position, fraction] = ticks_[static_cast<std::size_t>(i)];
        fill(at, position, held);
        const Float4 next = loadPair(pairs + 2 * i);
        storePair(out + 2 * position, held + splat(fraction) * (next - held));
        held = next;
        at = position + 1;
    }
    fill(at, samples, held);
    return held;
}

} // namespace Engine
