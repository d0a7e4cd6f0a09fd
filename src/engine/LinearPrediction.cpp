#include "engine/LinearPrediction.h"

#include "engine/Simd.h"

#include <algorithm>
#include <cmath>

namespace Engine {

namespace {

constexpr float kLeastEnergy = 1e-5f;
constexpr double kLeastError = 1e-5;
constexpr double kLargestReflection = 0.9999;

using Coefficients = std::array<double, kMaxOrder>;

// The sum of a[j] r[i - j], j = 0..i-1, where r[i - j] is backward[kMaxOrder - 1 - i + j].
double correlate(const Coefficients& a, const Coefficients& backward, std::size_t i) noexcept {
    const double* const r = backward.data() + kMaxOrder - 1 - i;
    Double2 sums{};
    std::size_t j = 0;
    for (; j + 2 <= i; j += 2) {
        sums += load(&a[j]) * load(r + j);
    }
    const double rest = j < i ? a[j] * r[j] : 0;
    return sums[0] + sums[1] + rest;
}

// a[j] += k a[i - j] for j = 1..i-1, from both ends towards the middle.
void reflect(Coefficients& a, double k, std::size_t i) noexcept {
    std::size_t front = 1;
    std::size_t back = i - 1;
    for (; front + 3 <= back; front += 2, back -= 2) {
        const Double2 lower = load(&a[front]);
        const Double2 upper = load(&a[back - 1]);
        store(&a[front], lower + k * __builtin_shufflevector(upper, upper, 1, 0));
        store(&a[back - 1], upper + k * __builtin_shufflevector(lower, lower, 1, 0));
    }
    for (; front <= back; ++front, --back) {
        const double lower = a[front];
        const double upper = a[back];
        a[front] = lower + k * upper;
        a[back] = upper + k * lower;
    }
}

} // namespace

LinearPrediction predict(std::span<const float> r, int order) noexcept {
    LinearPrediction p;
    if (!(r[0] >= kLeastEnergy)) {
        return p;
    }
    auto& a = p.a;
    Coefficients backward{}; // r from its last lag to its first, so that sums run forward
    for (std::size_t i = 0; i < static_cast<std::size_t>(order); ++i) {
        backward[kMaxOrder - 1 - i] = static_cast<double>(r[i]);
    }
    double error = backward[kMaxOrder - 1];
    for (std::size_t i = 1; i < static_cast<std::size_t>(order); ++i) {
        const double k = -correlate(a, backward, i) / error;
        reflect(a, k, i);
        a[i] = k;
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
