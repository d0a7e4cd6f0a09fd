// The end of the chain: gains, ramps, bypass and the mono mode.
#include "Player.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Engine;
using TestSignals::Stereo;

namespace {

constexpr double kRate = 48000;

double largestStep(const std::vector<float>& x) {
    double largest = 0;
    for (std::size_t i = 1; i < x.size(); ++i) {
        largest = std::max(largest, std::fabs(static_cast<double>(x[i]) - static_cast<double>(x[i - 1])));
    }
    return largest;
}

Stereo delayed(const Stereo& in, int delay) {
    Stereo out(in.size());
    for (std::size_t i = static_cast<std::size_t>(delay); i < in.size(); ++i) {
        out.left[i] = in.left[i - static_cast<std::size_t>(delay)];
        out.right[i] = in.right[i - static_cast<std::size_t>(delay)];
    }
    return out;
}

} // namespace

TEST(Mix, hasEqualPower) {
    const auto in = TestSignals::speech(kRate, 1);
    const auto play = [&](float mix, float legacy) {
        Player player(kRate);
        player.block.parameters.mix = mix;
        player.block.parameters.legacyMode = legacy;
        return player.play(in, {96}).out;
    };
    for (const float legacy : {0.0f, 1.0f}) {
        const auto dry = play(0, legacy), wet = play(1, legacy);
        for (const float mix : {0.25f, 0.5f, 0.9f}) {
            const auto mixed = play(mix, legacy);
            for (std::size_t i = 0; i < in.size(); i += 7) {
                const double wanted = std::sqrt(1 - mix) * dry.right[i] + std::sqrt(mix) * wet.right[i];
                ASSERT_NEAR(mixed.right[i], wanted, 1e-6) << i;
            }
        }
    }
}

TEST(Mix, rampsAcrossTheBlock) {
    Stereo in(4000);
    std::ranges::fill(in.left, 0.5f);
    Player player(kRate);
    const auto out =
        player
            .play(in, {1000},
                  [](std::size_t at, int, Block& block) { block.parameters.mix = at < 2000 ? 0 : 0.75f; })
            .out;
    const auto gain = [&](std::size_t i) { return static_cast<double>(out.left[i]) / 0.5; };
    EXPECT_NEAR(gain(1999), 1, 1e-6);
    EXPECT_NEAR(gain(2500), 0.75,
                1e-3); // half way from 1 to sqrt(1 - 0.75); constant input gives no wet signal
    EXPECT_NEAR(gain(3000), 0.5, 1e-3);
    EXPECT_NEAR(gain(3999), 0.5, 1e-3);
    EXPECT_LT(largestStep({out.left.begin() + 1500, out.left.end()}), 1e-3);
}

TEST(Mix, bypassIsTheDelayedInputWithoutAClick) {
    const auto in = TestSignals::sine(220, 0.5, kRate, 1.5);
    for (const auto& blocks : {std::vector<int>{480}, {1}, {4096}}) {
        SCOPED_TRACE(blocks[0]);
        Player player(kRate);
        player.block.parameters = {.pitch = 0, .noiseAdjust = 0, .legacyMode = 1};
        std::size_t switched = 0;
        const auto out = player
                             .play(in, blocks,
                                   [&](std::size_t at, int, Block& block) {
                                       block.bypassed = at >= 20000;
                                       switched = switched == 0 && block.bypassed ? at : switched;
                                   })
                             .out;
        const auto dry = delayed(in, player.engine.latencySamples(player.block.parameters.sampleRate));
        for (std::size_t i = switched + 481; i < in.size(); ++i) {
            ASSERT_EQ(out.left[i], dry.left[i]) << i;
        }
        // While it fades it is a straight line from the one to the other.
        Player active(kRate);
        active.block = player.block;
        const auto wet = active.play(in, blocks).out;
        for (std::size_t i = switched; i < switched + 480; ++i) {
            const double share = static_cast<double>(i - switched) / 480;
            ASSERT_NEAR(out.left[i], wet.left[i] + share * (dry.left[i] - wet.left[i]), 0.003) << i;
        }
    }
}

TEST(Mix, bypassLeavesStereoAloneInMonoModeAndComesBack) {
    const auto in = TestSignals::speech(kRate, 1);
    Player player(kRate), active(kRate);
    player.block.parameters.legacyMode = active.block.parameters.legacyMode = 1;
    const auto out =
        player.play(in, {100}, [](std::size_t at, int, Block& block) { block.bypassed = at < 30000; }).out;
    const auto wet = active.play(in, {100}).out;
    const auto dry = delayed(in, player.engine.latencySamples(player.block.parameters.sampleRate));
    EXPECT_TRUE(std::equal(out.left.begin(), out.left.begin() + 30000, dry.left.begin()));
    EXPECT_TRUE(std::equal(out.right.begin(), out.right.begin() + 30000, dry.right.begin()));
    for (std::size_t i = 30000; i < 30480; ++i) {
        const double share = static_cast<double>(i - 30000) / 480;
        ASSERT_NEAR(out.left[i], dry.left[i] + share * (wet.left[i] - dry.left[i]), 0.003) << i;
    }
    EXPECT_TRUE(std::equal(out.left.begin() + 30500, out.left.end(), wet.left.begin() + 30500));
    EXPECT_EQ(wet.left, wet.right) << "mono";
}

TEST(Mix, theOutputStandsWhereTheInputStands) {
    struct Row {
        const char* name;
        double left, right, correlation;
        double balance; // right over left
        float pan, width;
    };
    const Row rows[] = {
        {"mono", 0.2, 0.2, 1, 1, 0, 0},
        {"independent", 0.2, 0.2, 0, 1, 0, 1},
        {"to the left", 0.2, 0.1, 1, 0.5, -0.5f, 0},
        {"right alone", 0, 0.2, 1, 1e9, 1, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        auto in = TestSignals::noise(1, row.correlation, kRate, 1);
        for (std::size_t i = 0; i < in.size(); ++i) {
            in.left[i] *= static_cast<float>(row.left);
            in.right[i] *= static_cast<float>(row.right);
        }
        Player player(kRate);
        const auto out = player.play(in).out;
        const double left = TestSignals::rms(out.left, 10000, in.size());
        const double right = TestSignals::rms(out.right, 10000, in.size());
        if (row.balance > 1000) {
            EXPECT_LT(left, 1e-3 * right);
        } else {
            EXPECT_NEAR(right / left, row.balance, 0.15 * row.balance);
        }
        EXPECT_NEAR(player.feedbacks.pan, row.pan, 0.1);
        EXPECT_NEAR(player.feedbacks.width, row.width, 0.15);
    }
}
