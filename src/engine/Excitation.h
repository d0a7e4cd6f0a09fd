// What drives the synthesis filter: two pulse voices and noise, mixed by the voicing.
#pragma once

#include "engine/NoiseTables.h"
#include "engine/ParameterGlide.h"
#include "engine/RateConfiguration.h"
#include "engine/Simd.h"
#include "engine/StereoImage.h"

#include <array>

namespace Engine {

// What the last frame says about the excitation.
struct VoiceFrame {
    float pitch = 0;    // octaves relative to C3, as detected
    float unvoiced = 0; // 0..1
    float residualAmplitude = 0;
    StereoImage image;
};

// How the player moves it.
struct VoiceControls {
    GlidingParameters parameters;
    float midiPitch = 0; // octaves
    bool gate = true;    // closed: no sound but the floor
    bool mono = false;

    bool operator==(const VoiceControls&) const = default;
};

// The excitation while neither frame nor controls change.
struct ExcitationSettings {
    struct Pulse {
        float frequency = 0; // cycles a sample
        float weight = 0;    // 0: this voice is off
    };
    Pulse main;
    Pulse detuned;
    float pulseGain = 0;
    float noiseGain = 0;
    bool mono = false;
    float correlation = 1; // of the noise on both sides
    float leftGain = 1;
    float rightGain = 1;
};

ExcitationSettings excitationSettings(const VoiceFrame& frame, const VoiceControls& controls,
                                      const RateConfiguration& rate) noexcept;

class Excitation {
public:
    static constexpr int kMaxRun = 256; // samples a call

    void clear() noexcept;

    // Writes `count` pairs of left and right.
    void render(const ExcitationSettings& settings, const RateConfiguration& rate, float* out,
                int count) noexcept;

    // While the input is silent: a floor that keeps everything behind it out of the denormal range.
    void renderFloor(float* out, int count) noexcept;

private:
    class Oscillator {
    public:
        void addNaive(float frequency, float gain, float* out, int count) noexcept;
        void addBandLimited(float frequency, float gain, float* out, int count) noexcept;

    private:
        float phase_ = 0; // 0..1
    };

    void renderPulses(const ExcitationSettings& settings, bool bandLimited, int count) noexcept;
    void renderMono(const ExcitationSettings& settings, float* out, int count) noexcept;
    void renderStereo(const ExcitationSettings& settings, float smoothing, float* out, int count) noexcept;

    Oscillator main_;
    Oscillator detuned_;
    NoiseGenerator noise_;
    Float4 noiseLowPass_{}; // left and right in the lower lanes
    alignas(16) std::array<float, kMaxRun> pulses_{};
};

} // namespace Engine
