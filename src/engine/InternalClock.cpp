#include "engine/InternalClock.h"

#include "engine/Simd.h"

namespace Engine {

int InternalClock::advance(const RateConfiguration& rate, int samples) noexcept {
    float countdown = countdown_;
    Tick* tick = ticks_.data();
    for (std::int32_t i = 0; i < samples; ++i) {
        countdown -= rate.clockIncrement;
        if (countdown <= 0) {
            *tick++ = {i, -countdown * rate.clockScale};
            countdown += 1;
        }
    }
    countdown_ = countdown;
    return static_cast<int>(tick - ticks_.data());
}

void InternalClock::sampleInput(const float* left, const float* right, int ticks,
                                float* pairs) const noexcept {
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
void InternalClock::holdOutput(const float* pairs, int ticks, int samples, float* out) noexcept {
    Float4 held = loadPair(held_.data());
    int at = 0;
    for (int i = 0; i < ticks; ++i) {
        const auto [position, fraction] = ticks_[static_cast<std::size_t>(i)];
        for (; at < position; ++at) {
            storePair(out + 2 * at, held);
        }
        const Float4 next = loadPair(pairs + 2 * i);
        storePair(out + 2 * at++, held + splat(fraction) * (next - held));
        held = next;
    }
    for (; at < samples; ++at) {
        storePair(out + 2 * at, held);
    }
    storePair(held_.data(), held);
}

} // namespace Engine
