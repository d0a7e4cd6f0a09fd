// The whole effect once more, written for plainness alone: one sample after the other, every question asked
// at every sample, sums as sums, in double wherever single precision does not belong to the sound. The engine
// is held against it.
#pragma once

#include "engine/VoiceEngine.h"

#include <array>
#include <cstdint>
#include <deque>
#include <vector>

class ReferenceEngine {
public:
    explicit ReferenceEngine(double hostRate) : fs_(hostRate) {}

    void process(const float* const* in, float* const* out, int samples, const Engine::Block& block);

    struct Frame {
        std::uint64_t hostSample;
        bool silent;
        double lag;
        double pitch;
        double unvoiced;
        double amplitude;
        double pan;
        double width;
        std::vector<double> coefficients;
    };
    const std::vector<Frame>& frames() const { return frames_; }

private:
    using Pair = std::array<double, 2>;

    struct Rate {
        double rate;
        float increment;
        int order, lowestLag, lags, length, latency;
        double expansion, unvoicedScale, preEmphasis, noiseSmoothing, noiseScale;
        float reference;
        double f, q, k, g;
    };

    static Rate rateFor(int step, double fs);
    void clear();
    void smooth(const Engine::ParameterValues& p, int samples);
    void midi(const Engine::MidiEvent& event, bool midiOn, bool sync);
    double midiPitch(const Engine::MidiSettings& settings) const;
    Pair internalSample(Pair input, const Engine::Block& block, float frameStep);
    void takeFrame(bool mono);
    void stereo(double ll, double rr, double ss, double dd);
    void predict(const std::vector<double>& r);
    void searchPitch(const std::vector<double>& r);
    Pair excite(const Engine::Block& block);
    double pulse(float& phase, float frequency) const;
    double noise();

    double fs_;
    int step_ = -1;
    Rate c_{};
    std::array<float, 4> smoothed_{};
    float countdown_ = 1;
    Pair lastInput_{};
    Pair previousOutput_{}, currentOutput_{};
    std::deque<Pair> dry_;
    double wetGain_ = -1, dryGain_ = -1;
    std::uint64_t time_ = 0;

    std::vector<int> notes_;
    int note_ = 60;
    bool sustain_ = false;
    double bend_ = 0;

    std::deque<Pair> ring_;
    float phase_ = -0.5f, previousPhase_ = -0.5f;
    std::vector<double> lastLags_, lastUnvoiced_;
    double rawUnvoiced_ = 1;
    bool silent_ = true;
    std::vector<double> filter_;
    double amplitude_ = 0, lag_ = 0, pitch_ = 0, unvoiced_ = 0, pan_ = 0, correlation_ = 1;
    float mainPhase_ = 0, detunedPhase_ = 0;
    std::uint32_t noiseState_ = 0;
    Pair noiseLow_{};
    std::deque<Pair> history_;
    Pair low_{}, band_{};
    std::vector<Frame> frames_;
};
