#include "engine/FrameAnalysis.h"

#include "engine/FrameWindow.h"
#include "engine/PitchSearch.h"

#include <algorithm>
#include <cmath>

namespace Engine {

namespace {

constexpr float kSilence = 2.5000003e-7f; // mean square of the windowed mid: 0.0005 squared
constexpr float kLeastError = 1e-6f;
constexpr float kAmplitudeScale = 0.4f;

// Lag i is weighted with 0.9 to the power i / frameLength, as a running product.
void fillLagWeights(std::span<float> weights, int frameLength) {
    const float step = std::exp(-0.105360545f / static_cast<float>(frameLength)); // ln 0.9
    float weight = 1;
    for (float& w : weights) {
        w = weight;
        weight *= step;
    }
}

AlignedFloats makeUntaper(int lagCount, int frameLength) {
    AlignedFloats factors((static_cast<std::size_t>(std::max(lagCount, 1)) + 3) / 4 * 4);
    for (int i = 0; i < lagCount; ++i) {
        const double x = static_cast<double>(i) / frameLength;
        const double taper = 0.4 + 0.99589914 * std::exp(-11.52489 * x * x);
        factors[static_cast<std::size_t>(i)] = static_cast<float>(1.4 / taper);
    }
    return factors;
}

} // namespace

FrameAnalysis::FrameAnalysis(std::span<const RateConfiguration, kRateSteps> configurations)
    : autocorrelation_(configurations) {
    std::size_t mostLags = 0;
    for (std::size_t i = 0; i < settings_.size(); ++i) {
        const RateConfiguration& rate = configurations[i];
        settings_[i].rate = rate;
        settings_[i].window = frameWindow(rate.frameLength);
        settings_[i].untaper = makeUntaper(rate.lagCount, rate.frameLength);
        fillLagWeights(settings_[i].lagWeights, rate.frameLength);
        mostLags = std::max(mostLags, settings_[i].untaper.size());
    }
    normalised_ = AlignedFloats(mostLags);
    setStep(0);
}

void FrameAnalysis::setStep(int step) noexcept {
    setting_ = &settings_[static_cast<std::size_t>(step)];
    autocorrelation_.setFrameLength(setting_->rate.frameLength);
}

FrameResult FrameAnalysis::analyse(const float* stereo, float expectedLag) noexcept {
    const RateConfiguration& rate = setting_->rate;
    FrameResult result;
    result.energies =
        windowFrame(stereo, setting_->window.span(), rate.preEmphasis, autocorrelation_.frame().data());
    const float midEnergy = result.energies.sum / 4;
    if (!(midEnergy * rate.windowStep >= kSilence)) {
        return result;
    }
    result.silent = false;
    const std::span<const float> r = autocorrelation_.compute();
    analysePrediction(r, result);
    analysePitch(r, expectedLag, result);
    return result;
}

void FrameAnalysis::analysePrediction(std::span<const float> r, FrameResult& result) const noexcept {
    const RateConfiguration& rate = setting_->rate;
    const auto order = static_cast<std::size_t>(rate.order);
    std::array<float, kMaxOrder> weighted{};
    for (std::size_t i = 0; i < order; ++i) {
        weighted[i] = r[i] * setting_->lagWeights[i];
    }
    const LinearPrediction prediction = predict(weighted, rate.order);
    const float error = std::max(static_cast<float>(prediction.error), kLeastError);
    result.residualAmplitude = kAmplitudeScale * std::sqrt(error * rate.windowStep);
    result.newFilter = isUsable(prediction);
    if (result.newFilter) {
        synthesisCoefficients(prediction, rate.expansionBase, std::span(result.coefficients).first(order));
    }
}

void FrameAnalysis::analysePitch(std::span<const float> r, float expectedLag, FrameResult& result) noexcept {
    const RateConfiguration& rate = setting_->rate;
    const auto lags = static_cast<std::size_t>(std::max(rate.lagCount, 1));
    for (std::size_t i = 0; i < lags; ++i) {
        normalised_[i] = r[i] * setting_->untaper[i];
    }
    const PitchEstimate pitch = searchPitch(normalised_.span().first(lags), rate.lowestLag, expectedLag);
    result.lag = pitch.lag;
    result.unvoiced = unvoicedAmount(pitch.peak, r[0], rate.unvoicedScale);
}

} // namespace Engine
