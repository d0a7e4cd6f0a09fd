#include "Player.h"

#include "engine/LinearPrediction.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

using namespace Engine;
using std::numbers::pi;

namespace {

// Autocorrelation of a random stretch of coloured noise.
std::vector<float> colouredCorrelation(std::size_t lags, unsigned seed) {
    std::mt19937 random(seed);
    std::normal_distribution<double> normal;
    std::vector<double> x(400);
    for (std::size_t i = 2; i < x.size(); ++i) {
        x[i] = normal(random) + 1.2 * x[i - 1] - 0.7 * x[i - 2];
    }
    std::vector<float> r(lags);
    for (std::size_t lag = 0; lag < lags; ++lag) {
        double sum = 0;
        for (std::size_t i = lag; i < x.size(); ++i) {
            sum += x[i] * x[i - lag];
        }
        r[lag] = static_cast<float>(sum);
    }
    return r;
}

// The normal equations, sum over j of a[j] r[|i - j|] = -r[i], by elimination.
std::vector<double> solveDirectly(const std::vector<float>& r, std::size_t unknowns) {
    std::vector<std::vector<double>> rows(unknowns, std::vector<double>(unknowns + 1));
    for (std::size_t i = 0; i < unknowns; ++i) {
        for (std::size_t j = 0; j < unknowns; ++j) {
            rows[i][j] = r[i > j ? i - j : j - i];
        }
        rows[i][unknowns] = -r[i + 1];
    }
    for (std::size_t i = 0; i < unknowns; ++i) {
        for (std::size_t k = 0; k < unknowns; ++k) {
            const double factor = rows[k][i] / rows[i][i];
            for (std::size_t j = i; k != i && j <= unknowns; ++j) {
                rows[k][j] -= factor * rows[i][j];
            }
        }
    }
    std::vector<double> a(unknowns);
    for (std::size_t i = 0; i < unknowns; ++i) {
        a[i] = rows[i][unknowns] / rows[i][i];
    }
    return a;
}

} // namespace

TEST(LinearPrediction, solvesTheNormalEquations) {
    for (const int order : {1, 2, 3, 4, 10, 14, 28, 61}) {
        SCOPED_TRACE(order);
        const auto unknowns = static_cast<std::size_t>(order) - 1;
        const auto r = colouredCorrelation(unknowns + 1, 3);
        const LinearPrediction p = predict(r, order);
        const auto wanted = solveDirectly(r, unknowns);
        double error = r[0];
        EXPECT_EQ(p.a[0], 1);
        for (std::size_t k = 1; k <= unknowns; ++k) {
            EXPECT_NEAR(p.a[k], wanted[k - 1], 1e-9) << k;
            error += wanted[k - 1] * static_cast<double>(r[k]);
        }
        EXPECT_NEAR(p.error, error, 1e-9 * static_cast<double>(r[0]));
        EXPECT_TRUE(isUsable(p));
    }
}

TEST(LinearPrediction, refusesWhatGivesNoStableFilter) {
    struct Row {
        const char* name;
        std::vector<float> r;
        bool usable;
        double error;
    };
    const double w = 0.3;
    const Row rows[] = {
        {"nothing", {9e-6f, 0, 0}, false, 0},
        {"hardly something", {1.1e-5f, 0, 0}, true, 1.1e-5},
        {"too little is left", {1.1e-5f, 0.9e-5f, 0.5e-5f}, false, 0.21e-5},
        {"reflection 0.9998", {1, 0.9998f, 0.9996f}, true, 4e-4},
        {"reflection 0.99995", {1, 0.99995f, 0.9999f}, false, 1e-4},
        {"a pure sine", {1, static_cast<float>(std::cos(w)), static_cast<float>(std::cos(2 * w))}, false, 0},
        {"no correlation at all", {1, 2, 3}, false, -3},
        {"not a number", {NAN, NAN, NAN}, false, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const LinearPrediction p = predict(row.r, 3);
        EXPECT_EQ(isUsable(p), row.usable);
        EXPECT_NEAR(p.error, row.error, 1e-2 * std::fabs(row.error) + 1e-6);
    }
}

TEST(LinearPrediction, synthesisWidensTheResonancesAndTurnsTheSign) {
    LinearPrediction p;
    p.a = {1, -1.6, 0.9};
    std::array<float, 4> out{};
    synthesisCoefficients(p, 0.9f, out);
    EXPECT_EQ(out[0], 1);
    EXPECT_FLOAT_EQ(out[1], static_cast<float>(1.6 * std::pow(0.9, 0.25)));
    EXPECT_FLOAT_EQ(out[2], static_cast<float>(-0.9 * std::pow(0.9, 0.5)));
}

// Noise of a known spectrum, played at every step: the filter found has that spectrum's shape, and what
// leaves the filter again has its level.
TEST(LinearPrediction, synthesisHasTheSpectrumOfTheInput) {
    for (int step = 0; step < 4; ++step) {
        SCOPED_TRACE(step);
        const double internal = std::array{8000, 11025, 22050, 48000}[static_cast<std::size_t>(step)];
        // One resonance at 1500 Hz, 300 Hz wide.
        const double w = 2 * pi * 1500 / internal;
        const double radius = std::exp(-pi * 300 / internal);
        auto in = TestSignals::noise(1, 1, internal, 1);
        in.left[0] = in.left[1] = 0;
        for (std::size_t i = 2; i < in.size(); ++i) {
            const double y = 0.01 * static_cast<double>(in.left[i]) +
                             2 * radius * std::cos(w) * static_cast<double>(in.left[i - 1]) -
                             radius * radius * static_cast<double>(in.left[i - 2]);
            in.left[i] = static_cast<float>(y);
        }
        in.right = in.left;
        Player player(internal);
        player.block.parameters.sampleRate = rateStep(step);
        player.block.parameters.noiseAdjust = 1; // all noise, so that its spectrum is the filter's
        const auto played = player.play(in);
        const FilterSnapshot filter = player.feedbacks.filter();
        const auto decibels = [&](double hertz) {
            return 10 * std::log10(*powerResponse(filter, 2 * pi * hertz / internal));
        };
        EXPECT_GT(decibels(1500), decibels(800) + 6);
        EXPECT_GT(decibels(1500), decibels(2200) + 6);
        EXPECT_GT(decibels(1500), decibels(3500) + 10);
        // Stable: the impulse response dies away.
        std::vector<double> y(20000);
        y[0] = 1;
        for (std::size_t n = 1; n < y.size(); ++n) {
            for (std::size_t k = 1; k < static_cast<std::size_t>(filter.order) && k <= n; ++k) {
                y[n] += static_cast<double>(filter.coefficients[k]) * y[n - k];
            }
        }
        EXPECT_LT(std::fabs(y.back()), 1e-9);
        const double gain = 20 * std::log10(TestSignals::rms(played.out.left, in.size() / 2, in.size()) /
                                            TestSignals::rms(in.left, in.size() / 2, in.size()));
        EXPECT_NEAR(gain, 0, 4);
    }
}
