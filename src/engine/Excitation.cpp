#include "engine/Excitation.h"

#include <algorithm>
#include <cmath>

namespace Engine {

namespace {

constexpr float kFloor = 1e-8f;
constexpr float kMonoNoiseScale = 1.7320508f;   // sqrt(3): the table's root mean square is 1 / sqrt(3)
constexpr float kStereoNoiseScale = 2.4494898f; // sqrt(6): and sqrt(2) for what mixing two draws takes

// sin(pi x) over -1/2..1/2: the odd polynomial of the least relative error there, 5e-9.
Float4 sinePi(Float4 x) noexcept {
    const Float4 z = x * x;
    Float4 s = splat(0.077560387f);
    s = s * z + splat(-0.59824213f);
    s = s * z + splat(2.5500697f);
    s = s * z + splat(-5.1677097f);
    s = s * z + splat(3.1415926f);
    return s * x;
}

// sin(2 pi x) for x in -1/2..1/2.
Float4 sineOfTurn(Float4 x) noexcept {
    const Float4 quarter = splat(0.25f);
    const Float4 folded = quarter - magnitude(magnitude(x) - quarter); // 0..1/4
    const Float4 s = sinePi(folded + folded);
    const Int4 sign = reinterpret_cast<Int4>(x) & (Int4{} + INT32_MIN);
    return reinterpret_cast<Float4>(reinterpret_cast<Int4>(s) | sign);
}

// The sum of cos(2 pi k x), k = 1..harmonics, for phases x in 0..1, in closed form:
// (sin((2 N + 1) pi x) / sin(pi x) - 1) / 2, and N where both sines vanish.
Float4 cosineSum(Float4 x, float harmonics) noexcept {
    const Float4 half = splat(0.5f);
    const Float4 d = x - keep(x >= half, splat(1)); // the pulse is the same before and after the wrap
    const Float4 turns = d * splat(harmonics + 0.5f);
    const Float4 numerator = sineOfTurn(turns - rounded(turns));
    const Int4 atPulse = magnitude(d) < splat(1e-12f);
    const Float4 denominator = select(atPulse, splat(1), sinePi(d)); // 0 / 0 may trap: some hosts let it
    const Float4 sum = (numerator / denominator - splat(1)) * half;
    return select(atPulse, splat(harmonics), sum);
}

} // namespace

void Excitation::Oscillator::addNaive(float frequency, float gain, float* out, int count) noexcept {
    // 2 where the phase wraps and 0 elsewhere, less the mean; of unit root mean square after the scale.
    const float scaled = gain / std::sqrt(4 * frequency * (1 - frequency));
    const float rest = -2 * frequency * scaled;
    const float pulse = 2 * scaled;
    for (int i = 0; i < count; ++i) {
        phase_ += frequency;
        out[i] += rest;
        if (phase_ >= 1) {
            phase_ -= 1;
            out[i] += pulse;
        }
    }
}

void Excitation::Oscillator::addBandLimited(float frequency, float gain, float* out, int count) noexcept {
    const float harmonics = std::floor(0.5f / frequency);
    const Float4 scaled = splat(gain / std::sqrt(harmonics / 2)); // cosines of mean square 1/2 each
    for (int i = 0; i < count; i += 4) {
        Float4 phases{};
        for (int lane = 0; lane < std::min(4, count - i); ++lane) {
            phase_ += frequency;
            if (phase_ >= 1) {
                phase_ -= 1;
            }
            phases[lane] = phase_;
        }
        store(out + i, load(out + i) + cosineSum(phases, harmonics) * scaled);
    }
}

void Excitation::clear() noexcept {
    main_ = {};
    detuned_ = {};
    noise_.clear();
    noiseLowPass_ = Float4{};
}

void Excitation::render(const ExcitationSettings& settings, const RateConfiguration& rate, float* out,
                        int count) noexcept {
    renderPulses(settings, rate.bandLimitedPulse, count);
    if (settings.mono) {
        renderMono(settings, out, count);
    } else {
        renderStereo(settings, rate.noiseSmoothing, out, count);
    }
}

void Excitation::renderPulses(const ExcitationSettings& settings, bool bandLimited, int count) noexcept {
    std::fill_n(pulses_.begin(), count, 0.0f);
    const auto add = bandLimited ? &Oscillator::addBandLimited : &Oscillator::addNaive;
    (main_.*add)(settings.main.frequency, settings.main.weight * settings.pulseGain, pulses_.data(), count);
    if (settings.detuned.weight > 0) {
        (detuned_.*add)(settings.detuned.frequency, settings.detuned.weight * settings.pulseGain,
                        pulses_.data(), count);
    }
}

void Excitation::renderMono(const ExcitationSettings& settings, float* out, int count) noexcept {
    const float gain = kMonoNoiseScale * settings.noiseGain;
    for (int i = 0; i < count; ++i) {
        const float x = noise_.draw() * gain + pulses_[static_cast<std::size_t>(i)];
        out[2 * i] = x * settings.leftGain;
        out[2 * i + 1] = x * settings.rightGain;
    }
}

void Excitation::renderStereo(const ExcitationSettings& settings, float smoothing, float* out,
                              int count) noexcept {
    const Float4 own = splat((1 - std::fabs(settings.correlation) / 2) * settings.noiseGain);
    const Float4 other = splat(settings.correlation / 2 * settings.noiseGain);
    const Float4 sides = {settings.leftGain, settings.rightGain, 0, 0};
    for (int i = 0; i < count; ++i) {
        const float first = noise_.draw();
        const float second = noise_.draw();
        const Float4 noise = Float4{first, second, 0, 0} * splat(kStereoNoiseScale);
        noiseLowPass_ += splat(smoothing) * (noise - noiseLowPass_);
        const Float4 high = noise - noiseLowPass_;
        const Float4 crossed = __builtin_shufflevector(high, high, 1, 0, 2, 3);
        const Float4 mixed = own * high + other * crossed + splat(pulses_[static_cast<std::size_t>(i)]);
        storePair(out + 2 * i, mixed * sides);
    }
}

void Excitation::renderFloor(float* out, int count) noexcept {
    for (int i = 0; i < count; ++i) {
        out[2 * i] = out[2 * i + 1] = noise_.draw() * kFloor;
    }
}

} // namespace Engine
