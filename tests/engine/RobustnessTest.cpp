// What hosts do: odd blocks, odd rates, odd samples.
#include "Player.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <limits>
#include <stdexcept>

using namespace Engine;
using TestSignals::Stereo;

namespace {

constexpr double kRate = 48000;

bool allFinite(const std::vector<float>& x) {
    return std::ranges::all_of(x, [](float v) { return v == 0 || std::isnormal(v); });
}

} // namespace

// To the last bit: whatever is computed side by side, a sample comes out the same.
TEST(Robustness, theBlockLengthDoesNotMatter) {
    struct Row {
        const char* name;
        double rate;
        ParameterValues parameters;
    };
    const Row rows[] = {
        {"8", 48000, {.sampleRate = rateStep(0)}},
        {"11 detuned", 44100, {.sampleRate = rateStep(1), .detune = 0.4f}},
        {"22 half dry", 48000, {.mix = 0.4f}},
        {"48", 48000, {.sampleRate = rateStep(3), .frameRate = 1, .detune = 0.4f}},
        {"48 at 96, legacy", 96000, {.sampleRate = rateStep(3), .legacyMode = 1}},
        {"so loud that the filter clamps", 48000, {.sampleRate = rateStep(2), .noiseAdjust = 0}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        auto in = TestSignals::speech(row.rate, 1);
        if (row.parameters.noiseAdjust == 0) {
            for (float& x : in.left) {
                x *= 500;
            }
        }
        const auto play = [&](const std::vector<int>& blocks) {
            Player player(row.rate);
            player.block.parameters = row.parameters;
            return player.play(in, blocks).out;
        };
        const Stereo wanted = play({512});
        EXPECT_GT(TestSignals::rms(wanted.left, 0, in.size()), 0.01);
        for (const auto& blocks : {std::vector<int>{1}, {7}, {64}, {5000}, {1000000}, {0, 3, 250, 0, 19}}) {
            const Stereo got = play(blocks);
            EXPECT_EQ(got.left, wanted.left) << blocks[0];
            EXPECT_EQ(got.right, wanted.right) << blocks[0];
        }
    }
}

TEST(Robustness, worksInPlaceAndWithOneBufferForBothSides) {
    const auto in = TestSignals::speech(kRate, 0.5);
    Player apart(kRate), together(kRate);
    apart.block.parameters.mix = together.block.parameters.mix = 0.5f;
    const auto wanted = apart.play({in}, {400}).out;
    Stereo buffers = in;
    for (std::size_t at = 0; at + 400 <= in.size(); at += 400) {
        float* const both[] = {&buffers.left[at], &buffers.right[at]};
        together.engine.process(both, both, 400, together.block);
    }
    EXPECT_EQ(buffers.left, wanted.left);
    EXPECT_EQ(buffers.right, wanted.right);
    float* const same[] = {buffers.left.data(), buffers.left.data()};
    together.engine.process(same, same, 4000, together.block);
    EXPECT_TRUE(allFinite(buffers.left));
}

TEST(Robustness, samplesOfNonsenseAreSilence) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    for (const float nonsense :
         {NAN, -NAN, kInfinity, -kInfinity, 1e-40f, -std::numeric_limits<float>::denorm_min()}) {
        for (const float mix : {1.0f, 0.0f}) {
            SCOPED_TRACE(nonsense);
            auto broken = TestSignals::speech(kRate, 0.6), silenced = broken;
            for (std::size_t i = 5000; i < 25000; i += i < 6000 ? 1 : 317) {
                broken.left[i] = nonsense;
                broken.right[i + 1] = nonsense;
                silenced.left[i] = silenced.right[i + 1] = 0;
            }
            Player first(kRate), second(kRate);
            first.block.parameters.mix = second.block.parameters.mix = mix;
            const auto got = first.play(broken).out, wanted = second.play(silenced).out;
            EXPECT_EQ(got.left, wanted.left);
            EXPECT_EQ(got.right, wanted.right);
        }
    }
}

TEST(Robustness, hugeInputIsForgotten) {
    for (const float huge : {1e6f, 1e9f, 1e13f, 1e17f, 1e20f, std::numeric_limits<float>::max()}) {
        for (int step = 0; step < 4; ++step) {
            SCOPED_TRACE(testing::Message() << huge << " step " << step);
            auto in = TestSignals::speech(kRate, 2);
            for (std::size_t i = 5000; i < 9000; ++i) {
                in.left[i] = i % 3 == 0 ? huge : -huge;
                in.right[i] = i % 5 == 0 ? huge : 0;
            }
            Player player(kRate), calm(kRate);
            player.block.parameters.sampleRate = calm.block.parameters.sampleRate = rateStep(step);
            const Played played = player.play(in);
            const Stereo& out = played.out;
            for (const FrameRecord& frame : played.frames) {
                EXPECT_LT(frame.width, 1.9f) << "sums overflow";
            }
            const auto wanted = calm.play(TestSignals::speech(kRate, 2)).out;
            EXPECT_TRUE(std::ranges::all_of(out.left, [](float x) { return std::isfinite(x); }));
            EXPECT_TRUE(std::ranges::all_of(out.right, [](float x) { return std::isfinite(x); }));
            const double level = TestSignals::rms(out.left, 48000, 96000);
            EXPECT_NEAR(level / TestSignals::rms(wanted.left, 48000, 96000), 1, 0.2);
        }
    }
}

TEST(Robustness, silenceIsQuietButNotDenormal) {
    for (int step = 0; step < 4; ++step) {
        SCOPED_TRACE(step);
        Player player(kRate);
        player.block.parameters.sampleRate = rateStep(step);
        const auto before = TestSignals::speech(kRate, 0.4);
        Stereo in(static_cast<std::size_t>(kRate) * 2);
        std::ranges::copy(before.left, in.left.begin());
        const auto out = player.play(in).out;
        EXPECT_TRUE(player.engine.lastFrame().silent);
        EXPECT_TRUE(allFinite(out.left));
        const double level = TestSignals::rms(out.left, in.size() - 20000, in.size());
        EXPECT_LT(level, 1e-6);
        EXPECT_GT(level, step == 0 ? 1e-18 : 1e-11); // quantised to nothing but its trace at the lowest step
        EXPECT_EQ(player.feedbacks.amplitude, 0);
        EXPECT_TRUE(std::isfinite(player.feedbacks.volume));
    }
}

TEST(Robustness, strangeHostRatesAndParameters) {
    for (const double rate : {1.0, 29.0, 50.0, 400.0, 1000.0, 7999.0, 8000.5, 384000.0}) {
        for (int step = 0; step < 4; ++step) {
            SCOPED_TRACE(testing::Message() << rate << " step " << step);
            Player player(rate);
            player.block.parameters = {.sampleRate = rateStep(step),
                                       .frameRate = 5,
                                       .midi = NAN,
                                       .pitch = INFINITY,
                                       .tracking = 1,
                                       .detune = -3,
                                       .noiseAdjust = NAN,
                                       .mix = 0.5f};
            const auto out = player.play(TestSignals::noise(0.2, 0.5, rate, 4000 / rate), {333}).out;
            EXPECT_TRUE(std::ranges::all_of(out.left, [](float x) { return std::isfinite(x); }));
        }
    }
    Feedbacks feedbacks;
    VoiceEngine engine(feedbacks);
    const int latency = engine.latencySamples(1);
    for (const double nonsense :
         {0.0, -48000.0, 0.5, 1e12, std::nan(""), std::numeric_limits<double>::infinity()}) {
        EXPECT_THROW(engine.setSampleRate(nonsense), std::invalid_argument) << nonsense;
        EXPECT_EQ(engine.latencySamples(1), latency) << "refused and unchanged";
    }
}

TEST(Robustness, aResetEngineIsANewOne) {
    const auto in = TestSignals::speech(kRate, 0.5);
    Player player(kRate);
    static const MidiEvent kNote[] = {{0, 0x90, 70, 1}, {9, 0xe0, 0, 99}};
    player.block.parameters.midi = 1;
    const auto withNotes = [](std::size_t, int, Block& block) { block.midiEvents = kNote; };
    const auto first = player.play(in, {64}, withNotes).out;
    EXPECT_TRUE(player.feedbacks.filter().order > 0);
    player.engine.reset();
    EXPECT_EQ(player.feedbacks.filter().order, 0);
    EXPECT_EQ(player.feedbacks.sampleRate, 22050);
    EXPECT_EQ(player.engine.lastFrame().number, 0u);
    EXPECT_EQ(player.play(in, {64}, withNotes).out.left, first.left);
    player.engine.reset();
    EXPECT_LT(TestSignals::rms(player.play(in).out.left, 0, in.size()), 1e-6) << "no note is left hanging";
}

TEST(Feedbacks, powerResponseOfAKnownFilter) {
    EXPECT_EQ(powerResponse(FilterSnapshot{}, 1), std::nullopt);
    const FilterSnapshot onePole = {2, {1, 0.5f}};
    EXPECT_NEAR(*powerResponse(onePole, 0), 4, 1e-6);
    EXPECT_NEAR(*powerResponse(onePole, -3), 4, 1e-6);
    EXPECT_NEAR(*powerResponse(onePole, 99), 1 / 2.25, 1e-6);
}

#ifdef __GLIBC__
// A few hosts run with them switched on, and end where one springs.
TEST(Robustness, noFloatingPointTrapSprings) {
    constexpr int kTraps = FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW;
    auto in = TestSignals::speech(kRate, 0.5);
    std::fill_n(in.left.begin() + 4000, 8000, 0.0f);
    std::fill_n(in.right.begin() + 4000, 8000, 0.0f);
    for (int step = 0; step < 4; ++step) {
        for (const float legacyMode : {0.0f, 1.0f}) {
            Player player(kRate);
            player.block.parameters = {
                .sampleRate = rateStep(step), .detune = 0.4f, .mix = 0.5f, .legacyMode = legacyMode};
            feenableexcept(kTraps);
            player.play(in, {512, 7});
            fedisableexcept(kTraps);
        }
    }
}
#endif
