// How loud a sound is at a time and a frequency.
#pragma once

#include "engine/AlignedFloats.h"
#include "engine/FourierPlans.h"

#include <memory>
#include <vector>

namespace Tool {

struct Sound;

class Spectrogram {
public:
    explicit Spectrogram(const Sound& sound);

    // Levels in dB at these frequencies (Hz, rising), around the given second. Between two of them the
    // loudest counts, so that no line falls through.
    std::vector<float> levels(double second, const std::vector<double>& hertz);

private:
    void transform(double second);
    float levelAt(double bin) const;

    const Sound& sound_;
    int length_;
    std::shared_ptr<const Engine::FourierPlans> plans_;
    std::vector<float> window_;
    Engine::AlignedFloats samples_;
    Engine::AlignedFloats spectrum_;
    std::vector<float> decibels_; // a bin
};

} // namespace Tool
