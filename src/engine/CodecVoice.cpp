#include "engine/CodecVoice.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Engine {

namespace {

constexpr float kVoiced = 0.5f;             // unvoiced amount below which a frame has a pitch to expect again
constexpr float kQuietestAmplitude = 1e-8f; // what the volume shows for nothing: -160 dB

int longestFrame(std::span<const RateConfiguration, kRateSteps> rates) {
    return std::ranges::max(rates, {}, &RateConfiguration::frameLength).frameLength;
}

// To steps of 1/512 within -1/2..1/2. The trace of the input keeps the output filter busy in silence.
// `signal` has room for whole vectors.
void quantise(float* signal, int count) noexcept {
    for (float* four = signal; four < signal + 2 * count; four += 4) {
        const Float4 y = load(four);
        const Float4 steps = clamped(splat(512) * y + splat(0.5f), 256);
        store(four, floored(steps) * splat(0.001953125f) + splat(1e-8f) * y);
    }
}

} // namespace

CodecVoice::CodecVoice(std::span<const RateConfiguration, kRateSteps> configurations, int step,
                       Feedbacks& feedbacks)
    : feedbacks_(feedbacks), history_(longestFrame(configurations), kMaxRun), analysis_(configurations) {
    std::ranges::copy(configurations, rates_.begin());
    setStep(step);
}

void CodecVoice::setStep(int step) noexcept {
    step_ = step;
    history_.clear();
    clock_.clear();
    analysis_.setStep(step);
    lagTracker_.clear();
    voicingTracker_.clear();
    lastUnvoiced_ = 1;
    taken_ = {.number = taken_.number};
    frame_ = {};
    filter_ = {};
    silent_ = true;
    settingsValid_ = false;
    excitation_.clear();
    synthesis_.clear();
    outputFilter_.clear();
    feedbacks_.sampleRate.store(static_cast<float>(rate().rate), std::memory_order_relaxed);
    feedbacks_.publishFilter(filter_);
    publish();
}

std::span<const float> CodecVoice::coefficients() const noexcept {
    return std::span(filter_.coefficients).first(static_cast<std::size_t>(filter_.order));
}

int CodecVoice::process(const VoiceControls& controls, float frameStep, float* out, int count) noexcept {
    int lastFrame = -1;
    int clocked = 0;
    int done = 0;
    while (clocked < count) {
        bool frame = false;
        clocked += clock_.advance(frameStep, count - clocked, frame);
        if (frame) {
            // The sample that completes a frame is already made from it.
            lastFrame = clocked - 1;
            synthesise(controls, out + 2 * done, lastFrame - done);
            takeFrame(count - clocked, controls.mono);
            done = lastFrame;
        }
    }
    synthesise(controls, out + 2 * done, count - done);
    return lastFrame;
}

float CodecVoice::expectedLag() const noexcept {
    return lastUnvoiced_ < kVoiced ? lagTracker_.median() : 0;
}

void CodecVoice::takeFrame(int newer, bool mono) noexcept {
    const FrameResult result = analysis_.analyse(history_.frame(rate().frameLength, newer), expectedLag());
    settingsValid_ = false;
    silent_ = result.silent;
    taken_ = {taken_.number + 1, result.silent, result.lag, result.unvoiced, result.residualAmplitude};
    if (!result.silent) {
        lastUnvoiced_ = result.unvoiced;
        track(result, mono);
        useFilter(result);
    }
    publish();
}

void CodecVoice::track(const FrameResult& result, bool mono) noexcept {
    lagTracker_.push(result.lag);
    voicingTracker_.push(result.unvoiced);
    const float lag = lagTracker_.median();
    frame_.pitch = lag > 0 ? -std::log2(lag * rate().pitchReference) : 0;
    frame_.unvoiced = voicingTracker_.median();
    frame_.residualAmplitude = result.residualAmplitude;
    frame_.image = mono ? StereoImage{} : stereoImage(result.energies, rate().windowStep);
}

void CodecVoice::useFilter(const FrameResult& result) noexcept {
    if (!result.newFilter) {
        return;
    }
    filter_ = {rate().order, result.coefficients};
    synthesis_.setCoefficients(coefficients());
}

void CodecVoice::publish() noexcept {
    constexpr auto relaxed = std::memory_order_relaxed;
    const float amplitude = taken_.amplitude;
    feedbacks_.amplitude.store(amplitude, relaxed);
    feedbacks_.volume.store(20 * std::log10(std::max(amplitude, kQuietestAmplitude)), relaxed);
    if (silent_) {
        return;
    }
    const float turns = std::exp2(frame_.pitch) * rate().pitchReference;
    feedbacks_.pitch.store(frame_.pitch, relaxed);
    feedbacks_.frequency.store(std::min(2 * turns, 1.0f) * std::numbers::pi_v<float>, relaxed);
    feedbacks_.unvoiced.store(frame_.unvoiced, relaxed);
    feedbacks_.pan.store(frame_.image.pan, relaxed);
    feedbacks_.width.store(frame_.image.width(), relaxed);
    feedbacks_.publishFilter(filter_);
}

void CodecVoice::synthesise(const VoiceControls& controls, float* out, int count) noexcept {
    if (count == 0) {
        return;
    }
    if (silent_) {
        excitation_.renderFloor(out, count);
    } else {
        if (!settingsValid_ || !(controls == settledControls_)) {
            settings_ = excitationSettings(frame_, controls, rate());
            settledControls_ = controls;
            settingsValid_ = true;
        }
        excitation_.render(settings_, rate(), out, count);
    }
    synthesis_.process(out, count);
    if (rate().coarse) {
        quantise(out, count);
    }
    outputFilter_.process(rate().outputFilter, out, count);
}

} // namespace Engine
