// When things happen: frames, latency, and what a change of the rate does.
#include "Player.h"

#include "engine/FrameClock.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Engine;
using TestSignals::Stereo;

namespace {

constexpr double kRate = 48000;

} // namespace

TEST(FrameClock, beginsFramesWhereThePhaseRisesThroughZero) {
    const auto firstFrame = [](FrameClock& clock, float step) {
        bool frame = false;
        const int steps = clock.advance(step, 1000, frame);
        return frame ? steps : -1;
    };
    FrameClock clock;
    EXPECT_EQ(firstFrame(clock, 0.125f), 4) << "half a frame after the start";
    EXPECT_EQ(firstFrame(clock, 0.125f), 8);
    EXPECT_EQ(firstFrame(clock, 0), -1) << "standing still";
    clock.restart();
    EXPECT_EQ(firstFrame(clock, 0), 1) << "at once, even when standing still";
    EXPECT_EQ(firstFrame(clock, 0), -1) << "and once only";
    // Following a song. The phase was just below zero, and the position says just above: the frame is not
    // lost.
    clock.clear();
    bool frame = false;
    clock.advance(0.125f, 3, frame);
    clock.follow(7.001);
    EXPECT_EQ(firstFrame(clock, 0.125f), 1);
    clock.follow(6.999); // back by a hair: not a second time
    EXPECT_EQ(firstFrame(clock, 0.125f), 9);
    clock.follow(3.25); // a leap forward within the frame
    EXPECT_EQ(firstFrame(clock, 0.125f), 6);
    clock.follow(2.75);
    EXPECT_EQ(firstFrame(clock, 0.125f), 2);
    clock.follow(-0.5);
    EXPECT_EQ(firstFrame(clock, 0.125f), 4) << "before the song's start";
    clock.follow(NAN);
    clock.follow(INFINITY);
    EXPECT_EQ(firstFrame(clock, 0.125f), 8) << "nonsense is not followed";
}

TEST(Timing, framesASecond) {
    struct Row {
        const char* name;
        float sync, frameRate;
        double tempo;
        bool position;
        double frames; // in 4 seconds
    };
    const auto division = [](int index) { return (static_cast<float>(index) + 0.5f) / 17; };
    const Row rows[] = {
        {"fastest", 0, 1, 120, false, 320},
        {"default", 0, 0.9085603f, 120, false, 240},
        {"10 a second", 0, 0.5f, 120, false, 40},
        {"standing", 0, 0, 120, false, 0},
        {"1/64 at 120", 1, division(16), 120, false, 128},
        {"1/64 at 120 in a song", 1, division(16), 120, true, 128},
        {"1/4 at 90", 1, division(7), 90, false, 6},
        {"1/8T at 100 in a song", 1, division(11), 100, true, 20},
        {"dotted 1/8 at 120", 1, division(8), 120, false, 32 / 3.0},
        {"no faster than 80", 1, division(16), 999, false, 320},
        {"stopped", 1, division(0), 120, false, 0},
        {"tempo of nonsense", 1, division(7), NAN, false, 0},
        {"running backwards", 1, division(7), -120, false, 0},
    };
    const auto in = TestSignals::noise(0.1, 1, kRate, 4);
    for (const Row& row : rows) {
        for (int step = 0; step < 4; step += 3) {
            SCOPED_TRACE(testing::Message() << row.name << " step " << step);
            Player player(kRate);
            player.block.parameters = {
                .sampleRate = rateStep(step), .sync = row.sync, .frameRate = row.frameRate};
            player.block.transport.tempo = row.tempo;
            const auto played = player.play(in, {480}, [&](std::size_t at, int, Block& block) {
                if (row.position) {
                    block.transport.songPosition = static_cast<double>(at) / kRate * row.tempo / 60;
                }
            });
            EXPECT_NEAR(static_cast<double>(player.engine.lastFrame().number), row.frames, 1);
            if (row.position) { // the song starts at 0, where a frame starts
                const double interval = 4 * kRate / row.frames;
                const double last = static_cast<double>(player.engine.lastFrame().hostSample) / interval;
                EXPECT_NEAR(last, std::round(last), 20 / interval);
            }
        }
    }
}

TEST(Timing, theDryPathHasTheLatencyToTheSample) {
    for (const double rate : {8000.0, 22050.0, 44100.0, 47999.5, 48000.0, 88200.0, 96000.0, 192000.0}) {
        for (int step = 0; step < 4; ++step) {
            SCOPED_TRACE(testing::Message() << rate << " step " << step);
            Player player(rate);
            player.block.parameters = {.sampleRate = rateStep(step), .mix = 0};
            const int latency = player.engine.latencySamples(rateStep(step));
            Stereo in(static_cast<std::size_t>(latency) + 900);
            in.left[700] = 0.5f;
            in.right[701] = -0.25f;
            Stereo wanted(in.size());
            wanted.left[static_cast<std::size_t>(700 + latency)] = 0.5f;
            wanted.right[static_cast<std::size_t>(701 + latency)] = -0.25f;
            const auto played = player.play(in, {512, 100});
            EXPECT_EQ(played.out.left, wanted.left);
            EXPECT_EQ(played.out.right, wanted.right);
        }
    }
}

// A burst of noise comes out of the wet path when it comes out of the dry path, give or take half a frame.
TEST(Timing, theWetPathLinesUpWithTheDryPath) {
    for (int step = 0; step < 4; ++step) {
        SCOPED_TRACE(step);
        auto in = TestSignals::noise(0.3, 1, kRate, 1);
        for (std::size_t i = 0; i < in.size(); ++i) {
            const double distance = (static_cast<double>(i) - 24000) / 4000; // a bell around the middle
            in.left[i] *= static_cast<float>(std::exp(-distance * distance));
        }
        in.right = in.left;
        const auto centre = [](const Stereo& s) {
            double moment = 0, energy = 0;
            for (std::size_t i = 0; i < s.size(); ++i) {
                const double e = static_cast<double>(s.left[i]) * static_cast<double>(s.left[i]);
                moment += e * static_cast<double>(i);
                energy += e;
            }
            return moment / energy;
        };
        Player player(kRate);
        player.block.parameters = {.sampleRate = rateStep(step), .frameRate = 1};
        const double delay = centre(player.play(in).out) - centre(in);
        // A frame sounds from its start to the next, half of 600 samples later than where it was taken.
        EXPECT_NEAR(delay - 300, player.engine.latencySamples(rateStep(step)), 150);
    }
}

TEST(Timing, aNewRateStepClearsEverything) {
    auto in = TestSignals::vowel(150, kRate, 1);
    Player player(kRate);
    player.block.parameters.frameRate = 0.5f; // 10 a second: 4800 samples a frame
    const auto played = player.play(in, {100}, [](std::size_t at, int, Block& block) {
        block.parameters.sampleRate = at < 20000 ? rateStep(2) : rateStep(1);
    });
    std::vector<std::uint64_t> times;
    for (const FrameRecord& frame : played.frames) {
        times.push_back(frame.hostSample);
    }
    const std::vector<double> wanted = {2400, 7200, 12000, 16800, 22400, 27200, 32000, 36800, 41600, 46400};
    ASSERT_EQ(times.size(), wanted.size());
    for (std::size_t i = 0; i < times.size(); ++i) {
        EXPECT_NEAR(static_cast<double>(times[i]), wanted[i], 6);
    }
    EXPECT_GT(TestSignals::rms(played.out.left, 18000, 19900), 0.01);
    EXPECT_LT(TestSignals::rms(played.out.left, 20000, 22390), 1e-7) << "nothing is left of the old rate";
    EXPECT_GT(TestSignals::rms(played.out.left, 22410, 24000), 0.01);
}

TEST(Timing, sustainFreezesAndAFirstNoteRestarts) {
    const auto in = TestSignals::speech(kRate, 1);
    Player player(kRate);
    player.block.parameters = {.frameRate = 0.7f, .midi = 1};
    static const MidiEvent kNote[] = {{37, 0x90, 60, 1}};
    static const MidiEvent kSecondNote[] = {{37, 0x90, 62, 1}};
    static const MidiEvent kPedal[] = {{5, 0xb0, 64, 127}};
    static const MidiEvent kRelease[] = {{0, 0xb0, 64, 0}};
    const auto events = [](std::size_t at, int, Block& block) {
        block.midiEvents = at == 12800   ? std::span<const MidiEvent>(kNote)
                           : at == 13440 ? std::span<const MidiEvent>(kSecondNote)
                           : at == 25600 ? std::span<const MidiEvent>(kPedal)
                           : at == 38400 ? std::span<const MidiEvent>(kRelease)
                                         : std::span<const MidiEvent>();
    };
    const auto played = player.play(in, {64}, events);
    std::vector<std::uint64_t> times;
    for (const FrameRecord& frame : played.frames) {
        times.push_back(frame.hostSample);
    }
    const auto has = [&](double from, double to) {
        return std::ranges::count_if(times, [&](std::uint64_t t) {
            return static_cast<double>(t) >= from && static_cast<double>(t) < to;
        });
    };
    EXPECT_EQ(has(12800 + 37, 12800 + 37 + 4), 1) << "a frame at the first note";
    EXPECT_EQ(has(12845, 12837 + 1700), 0) << "and none at the second, 27.4 a second from there";
    EXPECT_EQ(has(12837 + 1700, 12837 + 1800), 1);
    EXPECT_EQ(has(25610, 38400), 0) << "the pedal holds the frame";
    EXPECT_GE(has(38400, 48000), 5);
    EXPECT_LT(TestSignals::rms(played.out.left, 2000, 12800), 1e-6) << "no note, no sound";
    EXPECT_GT(TestSignals::rms(played.out.left, 12900, 25600), 0.003);
    EXPECT_GT(TestSignals::rms(played.out.left, 36000, 38400), 0.003) << "frozen sound goes on";
}

TEST(Timing, sustainFreezesAgainstTheSong) {
    Player player(kRate);
    player.block.parameters = {.sync = 1, .frameRate = 1, .midi = 1};
    static const MidiEvent kPedal[] = {{0, 0xb0, 64, 127}};
    player.play(TestSignals::noise(0.1, 1, kRate, 1), {64}, [](std::size_t at, int, Block& block) {
        block.transport.songPosition = static_cast<double>(at) / 24000;
        block.midiEvents = at < 64 ? std::span<const MidiEvent>(kPedal) : std::span<const MidiEvent>();
    });
    EXPECT_LE(player.engine.lastFrame().number, 1u);
}
