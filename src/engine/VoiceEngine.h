// The voice engine: analyses a stereo signal frame by frame and resynthesises it from pulses and noise
// through the predicted all-pole filter, at a reduced internal rate. The effect instance owns one and calls
// `process` on the audio thread. It knows no host, no patch and no file: everything arrives with the block.
#pragma once

#include "engine/Feedbacks.h"
#include "engine/Midi.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace Engine {

// All normalised 0..1, as the host automates them.
struct ParameterValues {
    float sampleRate = 0.6666667f;
    float sync = 0;
    float frameRate = 0.9085603f;
    float midi = 0;
    float pitch = 0.5f;
    float tracking = 0.5f;
    float detune = 0;
    float noiseAdjust = 0.5f;
    float mix = 1;
    float legacyMode = 0;
};

struct Transport {
    double tempo = 120;                 // beats per minute
    std::optional<double> songPosition; // quarter notes, at the start of the block
};

struct Block {
    ParameterValues parameters;
    Transport transport;
    MidiSettings midiSettings;
    std::span<const MidiEvent> midiEvents;
    bool bypassed = false;   // dry with the same delay; changes cross-fade
    bool monoOutput = false; // one channel comes out, the average of both
    bool adding = false;     // to what the outputs hold, instead of replacing it
};

// What the frame analysis found last, for tools that draw or list it. Of a silent frame nothing is analysed:
// lag, unvoiced and amplitude are 0, and the others are those that sound on.
struct FrameRecord {
    std::uint64_t number = 0;     // frames taken so far; 0: none yet
    std::uint64_t hostSample = 0; // host samples processed when the frame was taken
    bool silent = false;
    float lag = 0;       // samples of the internal rate, before the tracker
    float pitch = 0;     // octaves relative to C3, after the tracker
    float unvoiced = 0;  // 0..1, before the tracker
    float amplitude = 0; // of the residual
    float pan = 0;
    float width = 0;
    // out[0] = 1, and out[1].. which predict a sample as the sum of out[k] times the one k before it: as the
    // synthesis uses them. Empty while there is no filter. Valid until `process`.
    std::span<const float> coefficients;
};

class VoiceEngine {
public:
    static constexpr double kInitialSampleRate = 44100;

    // [main]
    explicit VoiceEngine(Feedbacks& feedbacks);
    ~VoiceEngine();
    VoiceEngine(const VoiceEngine&) = delete;
    VoiceEngine& operator=(const VoiceEngine&) = delete;

    // [main, not while `process` runs] Builds the configurations of all rate steps and clears every history.
    // Rates that make no sense (not finite, below 1 Hz) are refused with std::invalid_argument.
    void setSampleRate(double hertz);

    // [main, not while `process` runs] Clears every history and lets go of all notes, as after a pause.
    void reset();

    // [any] Delay of the dry path in host samples at the given value of `sampleRate`.
    int latencySamples(float sampleRateParameter) const noexcept;

    // [audio] Any block length, 0 included. `in` and `out` are two channels each and may be the same buffers;
    // of a mono output, only the first channel of `out` is there.
    void process(const float* const* in, float* const* out, int samples, const Block& block) noexcept;

    // [audio]
    FrameRecord lastFrame() const noexcept;

private:
    class State;

    void prepare(double hertz, int step);

    Feedbacks& feedbacks_;
    std::unique_ptr<State> state_;
    std::array<std::atomic<int>, 4> latencies_{}; // one a rate step; written by the main thread
};

} // namespace Engine
