// What each step of the sample rate parameter means at a given host rate: the internal rate and everything
// that follows from it. Built for all steps when the host's rate is set, and constant from then on.
#pragma once

#include "engine/OutputFilter.h"

#include <array>

namespace Engine {

inline constexpr int kRateSteps = 4; // "8", "11", "22", "44 -> 48"

struct RateConfiguration {
    int rate = 0;             // internal sample rate, Hz
    float clockIncrement = 1; // internal samples a host sample, at most 1
    float clockScale = 1;     // its reciprocal
    float secondsPerSample = 0;
    float frameStepMax = 0;   // frames an internal sample at 80 frames a second
    int order = 1;            // coefficients of the prediction, the first of them always 1
    float expansionBase = 1;  // bandwidth expansion: coefficient k is scaled by this to the power k / order
    int lowestLag = 0;        // the pitch search starts here
    int lagCount = 0;         // lags of the autocorrelation, from 0
    int frameLength = 1;      // samples analysed a frame, a power of two
    float windowStep = 1;     // its reciprocal
    float unvoicedScale = 1;  // brings the unvoiced amount of noise, at this length, up to 1
    float preEmphasis = 1;    // coefficient of the one-pole low-pass that is taken away before the analysis
    float noiseSmoothing = 1; // the same for the stereo noise
    float pitchReference = 0; // cycles an internal sample of C3 (MIDI note 60), pitch 0
    float noiseScale = 1;     // level of noise beside pulses
    OutputFilter::Coefficients outputFilter;
    int latency = 0;               // of the dry path, host samples
    bool bandLimitedPulse = false; // the other steps let their pulses alias
    bool coarse = false;           // hard voicing and quantised output
};

inline constexpr int kMaxRate = 48000;
inline constexpr int kMaxFrameLength = 2048;

// `hostRate` in Hz, at least 1 and within int.
std::array<RateConfiguration, kRateSteps> makeRateConfigurations(double hostRate);

} // namespace Engine
