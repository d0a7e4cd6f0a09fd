#include "engine/LinearPrediction.h"

#include <algorithm>
#include <cmath>

namespace Engine {

namespace {

constexpr float kLeastEnergy = 1e-5f;
constexpr double kLeastError = 1e-5;
constexpr double kLargestReflection = 0.9999;

} // namespace

LinearPrediction predict(std::span<const float> r, int order) noexcept {
    LinearPrediction p;
    if (!(r[0] >= kLeastEnergy)) {
        return p;
    }
    auto& a = p.a;
    double error = static_cast<double>(r[0]);
    for (int i = 1; i < order; ++i) {
        const auto last = static_cast<std::size_t>(i);
        double acc = static_cast<double>(r[last]);
        for (std::size_t j = 1; j < last; ++j) {
            acc += a[j] * static_cast<double>(r[last - j]);
        }
        const double k = -acc / error;
        for (std::size_t j = 1; j <= last / 2; ++j) {
            const double front = a[j];
            const double back = a[last - j];
            a[j] = front + k * back;
            a[last - j] = back + k * front;
        }
        a[last] = k;
        error *= 1 - k * k;
        p.largestReflection = std::max(p.largestReflection, std::fabs(k));
        if (!(error > 0)) {
            p.largestReflection = std::max(p.largestReflection, 1.0); // no such correlation: rounding made it
            break;
        }
    }
    p.error = error;
    return p;
}

bool isUsable(const LinearPrediction& prediction) noexcept {
    return prediction.largestReflection < kLargestReflection && prediction.error > kLeastError;
}

void synthesisCoefficients(const LinearPrediction& prediction, float expansionBase,
                           std::span<float> out) noexcept {
    const double g = std::exp(std::log(static_cast<double>(expansionBase)) / static_cast<double>(out.size()));
    double power = 1;
    out[0] = 1;
    for (std::size_t k = 1; k < out.size(); ++k) {
        power *= g;
        out[k] = static_cast<float>(-power * prediction.a[k]);
    }
}

} // namespace Engine
