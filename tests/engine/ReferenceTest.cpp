// The engine against the plain transcription, frame by frame and sample by sample.
#include "Player.h"
#include "ReferenceEngine.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

struct Row {
    const char* name;
    double hostRate;
    int step;
    std::function<void(Engine::Block&)> set;
    double errorDecibels = -75;
    BlockChange change = {};
};

void expectSameFrames(const Played& played, const std::vector<ReferenceEngine::Frame>& wanted) {
    ASSERT_EQ(played.frames.back().number, wanted.size());
    for (std::size_t i = 0; i < played.frames.size(); ++i) {
        const Engine::FrameRecord& frame = played.frames[i];
        SCOPED_TRACE(testing::Message() << "frame " << frame.number);
        const ReferenceEngine::Frame& w = wanted[frame.number - 1];
        ASSERT_EQ(frame.hostSample, w.hostSample);
        ASSERT_EQ(frame.silent, w.silent);
        EXPECT_NEAR(frame.lag, w.lag, 0.01);
        EXPECT_NEAR(frame.pitch, w.pitch, 1e-3);
        EXPECT_NEAR(frame.unvoiced, w.unvoiced, 1e-4);
        EXPECT_NEAR(frame.amplitude, w.amplitude, 1e-3 * w.amplitude);
        EXPECT_NEAR(frame.pan, w.pan, 1e-4);
        EXPECT_NEAR(frame.width, w.width, 1e-3);
        for (std::size_t k = 0; k < played.coefficients[i].size(); ++k) {
            EXPECT_NEAR(played.coefficients[i][k], w.coefficients[k], 2e-3) << k;
        }
    }
}

// Energy of the difference over that of the wanted signal.
double errorDecibels(const TestSignals::Stereo& got, const TestSignals::Stereo& wanted) {
    double error = 0, energy = 0;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        const double l = wanted.left[i], r = wanted.right[i];
        error += std::pow(got.left[i] - l, 2) + std::pow(got.right[i] - r, 2);
        energy += l * l + r * r;
    }
    return 10 * std::log10(error / energy + 1e-30);
}

const std::vector<int> kBlocks = {64, 1, 100, 17, 256, 0, 300, 33};

} // namespace

TEST(Reference, engineIsThePlainTranscription) {
    using Engine::Block;
    static const Engine::MidiEvent kMelody[] = {
        {3, 0x90, 67, 100}, {11, 0xe0, 0, 80}, {20, 0x90, 55, 1}, {40, 0x80, 55, 0}, {63, 0xb0, 64, 127}};
    const auto automation = [](std::size_t at, int, Block& block) {
        std::mt19937 random(static_cast<unsigned>(at / 5000));
        std::uniform_real_distribution<float> value(0, 1);
        block.parameters = {.sampleRate = rateStep(static_cast<int>(at / 15000) % 4),
                            .frameRate = 0.7f + 0.3f * value(random),
                            .pitch = value(random),
                            .tracking = 0,
                            .detune = value(random),
                            .noiseAdjust = value(random),
                            .mix = value(random),
                            .legacyMode = value(random)};
    };
    const auto melody = [](std::size_t at, int samples, Block& block) {
        if (at / 700 != (at + static_cast<std::size_t>(samples)) / 700) {
            block.midiEvents = std::span(kMelody).first((at / 700) % 6);
        }
    };
    const auto song = [](std::size_t at, int, Block& block) {
        block.transport.songPosition = static_cast<double>(at) / 48000 * 130 / 60;
    };
    const Row rows[] = {
        {"8 at 48", 48000, 0, [](Block& b) { b.parameters.tracking = 0; }, -55},
        {"11 at 44.1", 44100, 1, [](Block& b) { b.parameters.tracking = 0; }},
        {"22 at 48", 48000, 2, [](Block& b) { b.parameters.tracking = 0; }},
        {"44 at 44.1", 44100, 3, [](Block& b) { b.parameters.tracking = 0; }},
        {"48 at 96", 96000, 3, [](Block& b) { b.parameters = {.tracking = 0, .detune = 0.4f}; }},
        {"half wet, low, noisy", 48000, 2,
         [](Block& b) { b.parameters = {.pitch = 0.2f, .tracking = 0, .noiseAdjust = 0.7f, .mix = 0.5f}; }},
        {"legacy", 48000, 1,
         [](Block& b) { b.parameters = {.tracking = 0, .detune = 0.005f, .legacyMode = 1}; }},
        // The last bit of a tracked pitch moves pulses by a sample now and then.
        {"tracking", 48000, 2, [](Block& b) { b.parameters = {.pitch = 0.6f, .tracking = 0.4f}; }, -30},
        {"slow host", 6000, 2, [](Block& b) { b.parameters.tracking = 0; }},
        {"odd host", 47999.5, 0, [](Block& b) { b.parameters.tracking = 0; }, -55},
        {"synced", 48000, 2, [](Block& b) { b.parameters = {.sync = 1, .frameRate = 0.8f, .tracking = 0}; },
         -75, song},
        {"midi", 48000, 2,
         [](Block& b) {
             b.parameters = {.midi = 1, .tracking = 0};
             b.midiSettings = {.bendRangeSemitones = 7, .bendHeldOnly = true, .masterTuningHz = 443};
         },
         -75, melody},
        {"automation", 48000, 0, [](Block&) {}, -75, automation},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto in = TestSignals::speech(row.hostRate, 1.5);
        Player player(row.hostRate);
        row.set(player.block);
        player.block.parameters.sampleRate = rateStep(row.step);
        ReferenceEngine reference(row.hostRate);
        TestSignals::Stereo wanted(in.size());
        std::size_t before = 0;
        const auto played = player.play(in, kBlocks, [&](std::size_t at, int samples, Block& block) {
            if (row.change) {
                row.change(at, samples, block);
            }
            const float* ins[2] = {&in.left[at], &in.right[at]};
            float* outs[2] = {&wanted.left[at], &wanted.right[at]};
            reference.process(ins, outs, samples, block);
            before = at;
        });
        expectSameFrames(played, reference.frames());
        EXPECT_LT(errorDecibels(played.out, wanted), row.errorDecibels);
    }
}
