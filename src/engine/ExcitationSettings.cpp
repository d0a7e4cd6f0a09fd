#include "engine/Excitation.h"

#include "parameters/ParameterTable.h"

#include <algorithm>
#include <cmath>

namespace Engine {

namespace {

constexpr float kHighestFrequency = 0.49f; // cycles a sample
constexpr float kLowestFrequency = 1e-9f;  // years below any pitch; keeps the pulse's scale finite
constexpr float kLevelScale = 3;
constexpr float kLevelFloor = 1e-8f;
constexpr float kInaudibleWeight = 1e-5f;

float smoothstep(float v) {
    return (3 - 2 * v) * v * v;
}

float boundedFrequency(float octaves, float reference) {
    const float frequency = std::exp2(octaves) * reference;
    return frequency < kHighestFrequency ? std::max(frequency, kLowestFrequency) : kHighestFrequency;
}

// 0..1: how far, in octaves, the second voice is above the first.
float detuneOctaves(float detune, bool mono) {
    return mono ? smoothstep(smoothstep(detune)) : static_cast<float>(Parameters::detuneCurve(detune));
}

float voicing(float noiseAdjust, float unvoiced, bool coarse) {
    const float v = std::clamp(2 * noiseAdjust - 1 + unvoiced, 0.0f, 1.0f);
    if (coarse) {
        return v >= 0.5f ? 1 : 0;
    }
    return smoothstep(v);
}

} // namespace

ExcitationSettings excitationSettings(const VoiceFrame& frame, const VoiceControls& controls,
                                      const RateConfiguration& rate) noexcept {
    const GlidingParameters& p = controls.parameters;
    ExcitationSettings s;
    const float octaves = 6 * p.pitch - 3 + 2 * p.tracking * frame.pitch + controls.midiPitch;
    const float detune = detuneOctaves(p.detune, controls.mono);
    const float share = std::min(200 * detune, 1.0f) / 2; // in full from 6 cents
    s.main = {boundedFrequency(octaves, rate.pitchReference), std::sqrt(1 - share)};
    s.detuned = {std::min(s.main.frequency * std::exp2(detune), kHighestFrequency), std::sqrt(share)};
    if (s.detuned.weight < kInaudibleWeight) {
        s.detuned.weight = 0;
    }
    const float v = voicing(p.noiseAdjust, frame.unvoiced, rate.coarse);
    const float level = kLevelScale * frame.residualAmplitude * (controls.gate ? 1.0f : 0.0f) + kLevelFloor;
    s.pulseGain = std::sqrt(1 - v) * level;
    s.noiseGain = std::sqrt(v) * level * rate.noiseScale;
    s.mono = controls.mono;
    const StereoImage image = controls.mono ? StereoImage{} : frame.image;
    s.correlation = image.correlation;
    s.leftGain = std::min(1 - image.pan, 1.0f);
    s.rightGain = std::min(1 + image.pan, 1.0f);
    return s;
}

} // namespace Engine
