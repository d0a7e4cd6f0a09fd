// Trackers, stereo image, parameter glide and rate configurations: small measures with known answers.
#include "engine/MedianTracker.h"
#include "engine/OutputFilter.h"
#include "engine/ParameterGlide.h"
#include "engine/RateConfiguration.h"
#include "engine/StereoImage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

using namespace Engine;

TEST(MedianTracker, followsTheMiddleOfTheLastValues) {
    struct Row {
        std::vector<float> values;
        std::vector<float> medians;
    };
    const Row rows[] = {
        {{3, 1, 2, 9, 8}, {3, 3, 2, 3, 3}},                          // filling: of two the larger
        {{5, 5, 5, 90, 5, 5, 5, 0, 5}, {5, 5, 5, 5, 5, 5, 5, 5, 5}}, // single outliers never show
        {{1, 1, 1, 1, 1, 7, 7, 7}, {1, 1, 1, 1, 1, 1, 1, 7}},        // a step shows after three
    };
    for (const Row& row : rows) {
        MedianTracker<5> tracker;
        EXPECT_TRUE(tracker.empty());
        for (std::size_t i = 0; i < row.values.size(); ++i) {
            tracker.push(row.values[i]);
            EXPECT_EQ(tracker.median(), row.medians[i]) << i;
        }
        tracker.clear();
        tracker.push(4);
        EXPECT_EQ(tracker.median(), 4);
    }
}

TEST(StereoImage, knownSources) {
    struct Row {
        const char* name;
        double left, right; // levels
        double correlation; // of the two
        double pan, shownCorrelation, width;
    };
    // Two signals of equal level and correlation c: sum and difference are as sqrt(1 + c) to sqrt(1 - c).
    const Row rows[] = {
        {"mono", 0.5, 0.5, 1, 0, 1, 0},
        {"inverted", 0.5, 0.5, -1, 0, -1, 2},
        {"independent", 0.5, 0.5, 0, 0, 0, 1},
        {"half alike", 0.5, 0.5, 0.5, 0, 1 - std::sqrt(0.5 / 1.5), std::sqrt(0.5 / 1.5)},
        {"half inverted", 0.5, 0.5, -0.5, 0, std::sqrt(0.5 / 1.5) - 1, 2 - std::sqrt(0.5 / 1.5)},
        {"mono, to the left", 0.5, 0.25, 1, -0.5, 1, 0},
        {"mono, to the right", 0.1, 0.5, 1, 0.8, 1, 0},
        {"left alone", 0.5, 0, 0, -1, 0, 0},
        {"right almost alone", 0.0004, 0.5, 0, 0.9992, 0, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const double ll = row.left * row.left, rr = row.right * row.right;
        const double lr = row.correlation * row.left * row.right;
        const auto energy = [](double meanSquare) { return static_cast<float>(meanSquare * 512); };
        const FrameEnergies energies = {energy(ll), energy(rr), energy(ll + rr + 2 * lr),
                                        energy(ll + rr - 2 * lr)};
        const StereoImage image = stereoImage(energies, 1.0f / 512);
        EXPECT_NEAR(image.pan, row.pan, 1e-4);
        EXPECT_NEAR(image.correlation, row.shownCorrelation, 2e-3);
        EXPECT_NEAR(image.width(), row.width, 2e-3);
    }
}

TEST(ParameterGlide, smallMovesSnapLargeOnesJumpTheRestGlides) {
    constexpr double kRate = 48000;
    EXPECT_EQ(glide(0.5f, 0.5009f, 64, kRate), 0.5009f);
    EXPECT_EQ(glide(0.2f, 0.5f, 64, kRate), 0.5f);
    EXPECT_EQ(glide(0.5f, 0.2f, 1, kRate), 0.2f);
    // 0.1 in a second of time constant 1 / (2 pi), and faster by the distance.
    const double a = std::exp(-2 * std::numbers::pi * 480 / kRate);
    EXPECT_NEAR(glide(0.5f, 0.6f, 480, kRate), 0.5 + 0.1 * (1 - a + 0.099 * a / 0.249), 1e-6);
    float value = 0.5f;
    int blocks = 0;
    for (; value != 0.4f && blocks < 1000; ++blocks) {
        value = glide(value, 0.4f, 480, kRate);
        EXPECT_GE(value, 0.4f);
    }
    EXPECT_GT(blocks, 10);
    EXPECT_LT(blocks, 100);
}

TEST(RateConfiguration, followsTheHost) {
    struct Row {
        double host;
        int step, rate, order, length, lags, latency;
    };
    const Row rows[] = {
        {44100, 0, 8000, 10, 512, 266, 828},
        {44100, 1, 11025, 14, 512, 367, 601},
        {44100, 2, 22050, 28, 1024, 735, 601},
        {44100, 3, 44100, 56, 2048, 1470, 601},
        {48000, 0, 8000, 10, 512, 266, 901},
        {48000, 3, 48000, 61, 2048, 1600, 601},
        {88200, 3, 44100, 56, 2048, 1470, 1201},
        {96000, 3, 48000, 61, 2048, 1600, 1201},
        {192000, 3, 48000, 61, 2048, 1600, 2400},
        {88199, 3, 48000, 61, 2048, 1600, 1103},
        {6000.7, 0, 6000, 7, 256, 200, 76},
        {6000.7, 3, 6000, 7, 256, 200, 76},
        {1, 2, 1, 1, 1, 0, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.host << " step " << row.step);
        const RateConfiguration c = makeRateConfigurations(row.host)[static_cast<std::size_t>(row.step)];
        EXPECT_EQ(c.rate, row.rate);
        EXPECT_EQ(c.order, row.order);
        EXPECT_EQ(c.frameLength, row.length);
        EXPECT_EQ(c.lagCount, row.lags);
        EXPECT_EQ(c.latency, row.latency);
    }
}

TEST(OutputFilter, isAButterworthHighPass) {
    for (const double corner : {50.0, 250.0}) {
        constexpr double kRate = 8000;
        const auto gainAt = [&](double hertz) {
            OutputFilter filter;
            filter.clear();
            std::vector<float> pairs(2 * 16000);
            for (std::size_t i = 0; i < pairs.size(); ++i) {
                pairs[i] = static_cast<float>(
                    std::cos(2 * std::numbers::pi * hertz / kRate * static_cast<double>(i / 2)));
            }
            filter.process(OutputFilter::highPass(corner, kRate), pairs.data(), 16000);
            double energy = 0;
            for (std::size_t i = pairs.size() / 2; i < pairs.size(); i += 2) {
                EXPECT_EQ(pairs[i], pairs[i + 1]);
                energy += static_cast<double>(pairs[i]) * static_cast<double>(pairs[i]);
            }
            return std::sqrt(energy / 8000 * (hertz == kRate / 2 ? 1 : 2));
        };
        EXPECT_NEAR(gainAt(kRate / 2), 1, 1e-4);
        EXPECT_NEAR(gainAt(corner), std::sqrt(0.5), 1e-3);
        EXPECT_NEAR(gainAt(corner / 10), 0.01, 1e-3); // 12 dB an octave
        EXPECT_NEAR(gainAt(1000), 1, 0.01);
    }
}
