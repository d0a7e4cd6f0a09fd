// From an autocorrelation to the coefficients of the synthesis filter.
#pragma once

#include "engine/Feedbacks.h"

#include <array>
#include <span>

namespace Engine {

inline constexpr int kMaxOrder = FilterSnapshot::kMaxOrder;

// The error filter 1 + sum of a[k] z^-k, k = 1..order-1, that leaves the least energy.
struct LinearPrediction {
    std::array<double, kMaxOrder> a{1.0};
    double error = 0;             // energy that is left
    double largestReflection = 0; // below 1 the inverse filter is stable
};

// Levinson-Durbin over order - 1 reflection coefficients, so that the `order` coefficients are one whole
// filter. `r` holds at least `order` lags. Next to nothing in r[0] gives no prediction and the error 0.
LinearPrediction predict(std::span<const float> r, int order) noexcept;

// Whether a filter made of this prediction would be stable, by a margin, and of something that sounds.
bool isUsable(const LinearPrediction& prediction) noexcept;

// The coefficients out[0] = 1, out[k] = -(g^k) a[k] of y[n] = x[n] + sum of out[k] y[n-k]. The resonances are
// widened by g = base^(1/order), and this is the one place where the sign turns from error filter to
// synthesis.
void synthesisCoefficients(const LinearPrediction& prediction, float expansionBase,
                           std::span<float> out) noexcept;

} // namespace Engine
