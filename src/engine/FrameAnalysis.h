// One frame of the input, analysed: prediction, residual amplitude, pitch lag, voicing and stereo energies.
#pragma once

#include "engine/Autocorrelation.h"
#include "engine/LinearPrediction.h"
#include "engine/RateConfiguration.h"
#include "engine/StereoImage.h"

#include <array>
#include <span>

namespace Engine {

struct FrameResult {
    bool silent = true; // too quiet: nothing of what follows was analysed
    FrameEnergies energies;
    float residualAmplitude = 0;
    float lag = 0;          // samples
    float unvoiced = 0;     // 0..1
    bool newFilter = false; // false: the prediction is no use, and the filter before stays
    std::array<float, kMaxOrder> coefficients{};
};

class FrameAnalysis {
public:
    // [main]
    explicit FrameAnalysis(std::span<const RateConfiguration, kRateSteps> configurations);

    // [audio] The configuration, one of those given before, of the frames to come.
    void setStep(int step) noexcept;

    // [audio] `stereo` holds the newest frameLength pairs of left and right, oldest first, and three more
    // pairs of room. `expectedLag` is where the pitch was; 0: not known.
    FrameResult analyse(const float* stereo, float expectedLag) noexcept;

private:
    struct Setting {
        RateConfiguration rate;
        AlignedFloats window;
        AlignedFloats untaper; // divides out the taper that the window puts on the correlation
        std::array<float, kMaxOrder> lagWeights{};
    };

    void analysePrediction(std::span<const float> r, FrameResult& result) const noexcept;
    void analysePitch(std::span<const float> r, float expectedLag, FrameResult& result) noexcept;

    std::array<Setting, kRateSteps> settings_;
    const Setting* setting_ = nullptr;
    Autocorrelation autocorrelation_;
    AlignedFloats normalised_;
};

} // namespace Engine
