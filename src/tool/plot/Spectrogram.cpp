#include "tool/plot/Spectrogram.h"

#include "tool/Sound.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace Tool {

namespace {

// Long enough to part the harmonics of a voice, short enough to show its syllables.
constexpr double kWindowSeconds = 0.035;
constexpr float kQuietest = 1e-12f; // of a squared magnitude

int lengthFor(int rate) {
    return static_cast<int>(std::bit_ceil(static_cast<unsigned>(std::max(rate * kWindowSeconds, 16.0))));
}

} // namespace

Spectrogram::Spectrogram(const Sound& sound)
    : sound_(sound), length_(lengthFor(sound.rate)), plans_(Engine::FourierPlans::forLength(length_)),
      window_(static_cast<std::size_t>(length_)), samples_(window_.size()), spectrum_(window_.size() + 2),
      decibels_(window_.size() / 2 + 1) {
    for (std::size_t i = 0; i < window_.size(); ++i) {
        const double phase = 2 * std::numbers::pi * (static_cast<double>(i) + 0.5) / length_;
        window_[i] = static_cast<float>((1 - std::cos(phase)) * 2 / length_); // a full sine reads 0 dB
    }
}

void Spectrogram::transform(double second) {
    const auto& left = sound_.channels[0];
    const auto& right = sound_.channels[1];
    const auto begin = std::llround(second * sound_.rate) - length_ / 2;
    for (std::size_t i = 0; i < window_.size(); ++i) {
        const auto at = begin + static_cast<std::int64_t>(i);
        const bool inside = at >= 0 && at < static_cast<std::int64_t>(left.size());
        const auto k = static_cast<std::size_t>(inside ? at : 0);
        samples_[i] = inside ? window_[i] * (left[k] + right[k]) / 2 : 0;
    }
    plans_->forward(samples_.data(), spectrum_.data());
    for (std::size_t k = 0; k < decibels_.size(); ++k) {
        const float re = spectrum_[2 * k];
        const float im = spectrum_[2 * k + 1];
        decibels_[k] = 10 * std::log10(std::max(re * re + im * im, kQuietest));
    }
}

float Spectrogram::levelAt(double bin) const {
    const double inside = std::clamp(bin, 0.0, static_cast<double>(decibels_.size() - 1));
    const auto below = std::min(static_cast<std::size_t>(inside), decibels_.size() - 2);
    const auto part = static_cast<float>(inside - static_cast<double>(below));
    return decibels_[below] + part * (decibels_[below + 1] - decibels_[below]);
}

std::vector<float> Spectrogram::levels(double second, const std::vector<double>& hertz) {
    transform(second);
    std::vector<float> result;
    double before = hertz.empty() ? 0 : hertz.front();
    for (const double frequency : hertz) {
        const double bin = frequency * length_ / sound_.rate;
        float level = levelAt(bin);
        for (double k = std::floor(before * length_ / sound_.rate) + 1; k < bin; ++k) {
            level = std::max(level, levelAt(k));
        }
        result.push_back(level);
        before = frequency;
    }
    return result;
}

} // namespace Tool
