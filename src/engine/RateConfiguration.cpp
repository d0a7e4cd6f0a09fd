#include "engine/RateConfiguration.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace Engine {

namespace {

struct Row {
    int rate; // Hz; 0: the host's own, halved until it is in reach
    float noiseScale;
    double preEmphasisHz;
    double outputFilterHz;
    float expansionBase;
};

constexpr std::array<Row, kRateSteps> kRows = {{
    {8000, 1.12f, 150, 250, 0.9f},
    {11025, 1.08f, 100, 125, 0.85f},
    {22050, 1.04f, 75, 75, 0.8f},
    {0, 1.02f, 50, 50, 0.75f},
}};

constexpr double kFramesPerSecondMax = 80;
constexpr double kNoiseSmoothingHz = 400;
constexpr double kC3Hz = 261.62558;
constexpr float kOrderPerHertz = 0.0012708333f;
constexpr int kHighestPitchHz = 1000;
constexpr int kLowestPitchHz = 30;
constexpr double kWindowPeakFromEnd =
    0.29289323; // 1 - 1/sqrt(2): the window sin^2(pi t^2) peaks at 1/sqrt(2)

int internalRate(int rowRate, int hostRate) {
    if (rowRate == 0) {
        rowRate = hostRate;
        while (rowRate >= 88200) {
            rowRate /= 2;
        }
    }
    return std::min({rowRate, hostRate, kMaxRate});
}

// The tallest chance peak in the correlation of noise makes a frame look partly voiced, a short one more so.
// This makes up for it.
float unvoicedScale(int frameLength) {
    switch (frameLength) {
    case 128:
        return 1.34379f;
    case 256:
        return 1.26033f;
    case 512:
        return 1.19211f;
    case 1024:
        return 1.14426f;
    case 2048:
        return 1.10486f;
    case 4096:
        return 1.07767f;
    default:
        return 1.0f;
    }
}

float onePoleCoefficient(double cornerHz, double rate) {
    return static_cast<float>(1 - std::exp(-2 * std::numbers::pi * cornerHz / rate));
}

RateConfiguration makeRateConfiguration(int step, double hostRate) {
    const Row& row = kRows.at(static_cast<std::size_t>(step));
    RateConfiguration c;
    c.rate = internalRate(row.rate, static_cast<int>(hostRate));
    const auto rate = static_cast<double>(c.rate);
    c.clockIncrement = static_cast<float>(std::min(rate / hostRate, 1.0));
    c.clockScale = 1 / c.clockIncrement;
    c.secondsPerSample = static_cast<float>(1 / rate);
    c.frameStepMax = static_cast<float>(kFramesPerSecondMax / rate);
    // In float: in double 48000 * 0.0012708333 is 60.9999984 and the order 60, not 61.
    c.order = std::max(static_cast<int>(static_cast<float>(c.rate) * kOrderPerHertz), 1);
    c.expansionBase = row.expansionBase;
    c.lowestLag = c.rate / kHighestPitchHz;
    c.lagCount = c.rate / kLowestPitchHz;
    c.frameLength = static_cast<int>(std::bit_ceil(static_cast<unsigned>(std::max(c.lagCount, 1))));
    c.windowStep = 1 / static_cast<float>(c.frameLength);
    c.unvoicedScale = unvoicedScale(c.frameLength);
    c.preEmphasis = onePoleCoefficient(row.preEmphasisHz, rate);
    c.noiseSmoothing = onePoleCoefficient(kNoiseSmoothingHz, rate);
    c.pitchReference = static_cast<float>(kC3Hz / rate);
    c.noiseScale = row.noiseScale;
    c.outputFilter = OutputFilter::highPass(row.outputFilterHz, rate);
    c.latency = static_cast<int>(std::floor(c.frameLength * kWindowPeakFromEnd * hostRate / rate + 0.5)) + 1;
    c.bandLimitedPulse = step == 3;
    c.coarse = step == 0;
    return c;
}

} // namespace

std::array<RateConfiguration, kRateSteps> makeRateConfigurations(double hostRate) {
    std::array<RateConfiguration, kRateSteps> all;
    for (int step = 0; step < kRateSteps; ++step) {
        all[static_cast<std::size_t>(step)] = makeRateConfiguration(step, hostRate);
    }
    return all;
}

} // namespace Engine
