// What the output's pitch is made of: the input's, the parameters', MIDI's and the second voice's.
#include "Player.h"

#include "engine/NoteStack.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>

using namespace Engine;

namespace {

constexpr double kRate = 48000;
constexpr double kC3 = 261.62558;

double amplitudeAt(const std::vector<float>& x, std::size_t from, double hertz) {
    std::complex<double> sum = 0;
    double weights = 0;
    for (std::size_t i = from; i < x.size(); ++i) {
        const double t = static_cast<double>(i - from) / static_cast<double>(x.size() - from);
        const double window = 1 - std::cos(2 * std::numbers::pi * t);
        sum += window * static_cast<double>(x[i]) *
               std::polar(1.0, -2 * std::numbers::pi * hertz * static_cast<double>(i) / kRate);
        weights += window;
    }
    return 2 * std::abs(sum) / weights;
}

} // namespace

TEST(Pitch, followsInputParametersAndMidi) {
    struct Row {
        const char* name;
        double input; // Hz
        ParameterValues parameters;
        std::vector<MidiEvent> midi;
        MidiSettings settings;
        double output; // Hz
    };
    const Row rows[] = {
        {"tracking", 150, {}, {}, {}, 150},
        {"tracking up high", 390, {}, {}, {}, 390},
        {"tracking at 11", 110, {.sampleRate = rateStep(1)}, {}, {}, 110},
        {"tracking at 8", 110, {.sampleRate = rateStep(0)}, {}, {}, 110},
        {"tracking at 44 -> 48", 110, {.sampleRate = rateStep(3)}, {}, {}, 110},
        {"no tracking", 150, {.tracking = 0}, {}, {}, kC3},
        {"twice the tracking", 200, {.tracking = 1}, {}, {}, 200 * 200 / kC3},
        {"an octave down", 200, {.pitch = 24.0f / 72}, {}, {}, 100},
        {"seven semitones up", 150, {.pitch = 43.0f / 72}, {}, {}, 150 * std::exp2(7.0 / 12)},
        {"a note", 150, {.midi = 1, .tracking = 0}, {{0, 0x90, 57, 1}}, {}, 220},
        {"a note and tracking", 150, {.midi = 1}, {{0, 0x90, 67, 1}}, {}, 150 * std::exp2(7.0 / 12)},
        {"a full bend", 150, {.midi = 1, .tracking = 0}, {{0, 0x90, 57, 1}, {0, 0xe0, 127, 127}}, {}, 440},
        {"a full bend down", 150, {.midi = 1, .tracking = 0}, {{0, 0x90, 69, 1}, {0, 0xe0, 0, 0}}, {}, 220},
        {"a full bend of two semitones",
         150,
         {.midi = 1, .tracking = 0},
         {{0, 0x90, 57, 1}, {0, 0xe0, 127, 127}},
         {.bendRangeSemitones = 2},
         220 * std::exp2(2.0 / 12)},
        {"tuned", 150, {.midi = 1, .tracking = 0}, {{0, 0x90, 57, 1}}, {.masterTuningHz = 415}, 207.5},
        {"midi off", 150, {.tracking = 0}, {{0, 0x90, 57, 1}, {0, 0xe0, 127, 127}}, {}, kC3},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Player player(kRate);
        player.block.parameters = row.parameters;
        player.block.parameters.noiseAdjust = 0; // pulses alone
        player.block.midiSettings = row.settings;
        const auto played = player.play(TestSignals::vowel(row.input, kRate, 0.6), {64},
                                        [&](std::size_t at, int, Block& block) {
                                            if (at == 0) {
                                                block.midiEvents = row.midi;
                                            }
                                        });
        const double found = TestSignals::pitchOf(played.out.left, 12000, played.out.size(), kRate,
                                                  row.output * 0.7, row.output * 1.6);
        EXPECT_NEAR(1200 * std::log2(found / row.output), 0, 12) << found; // cents
        if (row.parameters.midi == 0) {
            const float detected = player.feedbacks.pitch;
            EXPECT_NEAR(detected, std::log2(row.input / kC3), 0.01);
            const double internal = player.feedbacks.sampleRate;
            EXPECT_NEAR(player.feedbacks.frequency, 2 * std::numbers::pi * row.input / internal, 0.002);
        }
    }
}

TEST(Pitch, theSecondVoiceIsDetunedByTheCurve) {
    struct Row {
        float detune;
        double cents; // of the second voice; 0: there is none
    };
    for (const auto [detune, cents] :
         {Row{0, 0}, Row{0.0078f, 0}, Row{0.5f, 600}, Row{1, 1200}, Row{0.3f, 143.8}}) {
        SCOPED_TRACE(detune);
        Player player(kRate);
        player.block.parameters = {.tracking = 0, .detune = detune, .noiseAdjust = 0};
        const auto played = player.play(TestSignals::noise(0.1, 1, kRate, 2));
        const double first = amplitudeAt(played.out.left, 24000, kC3);
        const double second = amplitudeAt(played.out.left, 24000, kC3 * std::exp2(cents / 1200));
        EXPECT_GT(first, 0.01);
        if (cents > 0) {
            EXPECT_GT(second, 0.01);
            EXPECT_LT(amplitudeAt(played.out.left, 24000, kC3 * std::exp2((cents + 60) / 1200)),
                      0.2 * second);
        }
    }
}

TEST(NoteStack, keepsHeldNotesAndControllers) {
    struct Row {
        const char* name;
        std::vector<MidiEvent> events;
        bool held;
        float pitch;
        bool sustained = false;
    };
    std::vector<MidiEvent> many;
    for (int i = 0; i < 40; ++i) {
        many.push_back({0, 0x90, static_cast<std::uint8_t>(30 + i), 100});
    }
    const Row rows[] = {
        {"nothing", {}, false, 0},
        {"the last note wins", {{0, 0x90, 60, 9}, {0, 0x90, 72, 9}}, true, 1},
        {"back to the one before", {{0, 0x90, 48, 9}, {0, 0x90, 72, 9}, {0, 0x80, 72, 0}}, true, -1},
        {"released from below", {{0, 0x90, 48, 9}, {0, 0x90, 72, 9}, {0, 0x80, 48, 0}}, true, 1},
        {"velocity 0 releases", {{0, 0x93, 72, 9}, {0, 0x95, 72, 0}}, false, 0},
        {"a note twice is released once", {{0, 0x90, 72, 9}, {0, 0x90, 72, 9}, {0, 0x80, 72, 0}}, false, 0},
        {"33rd and later are ignored", many, true, 1.0f / 12},
        {"all notes off", {{0, 0x90, 72, 9}, {0, 0xb0, 123, 0}}, false, 0},
        {"all sound off", {{0, 0x90, 72, 9}, {0, 0xb0, 120, 0}}, false, 0},
        {"sustain", {{0, 0xb0, 64, 1}}, false, 0, true},
        {"sustain released", {{0, 0xb0, 64, 127}, {0, 0xb0, 64, 0}}, false, 0},
        {"reset", {{0, 0xb0, 64, 127}, {0, 0xe0, 0, 127}, {0, 0xb0, 121, 0}}, false, 0},
        {"bend up", {{0, 0xe0, 127, 127}}, false, 1},
        {"bend down", {{0, 0xe0, 0, 0}}, false, -1},
        {"bend a step", {{0, 0xe0, 1, 64}}, false, 1.0f / 8191},
        {"other messages", {{0, 0xa0, 72, 9}, {0, 0xc0, 3, 0}, {0, 0xd0, 9, 0}, {0, 0xf8, 0, 0}}, false, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        NoteStack notes;
        for (const MidiEvent& event : row.events) {
            notes.handle(event);
        }
        notes.settle();
        EXPECT_EQ(notes.anyHeld(), row.held);
        EXPECT_EQ(notes.sustained(), row.sustained);
        EXPECT_FLOAT_EQ(notes.pitch({}), row.pitch);
    }
    NoteStack bent;
    bent.handle({0, 0xe0, 0, 127});
    EXPECT_EQ(bent.pitch({.bendHeldOnly = true}), 0);
    bent.handle({0, 0x90, 60, 1});
    bent.settle();
    EXPECT_GT(bent.pitch({.bendHeldOnly = true}), 0.9f);
    bent.handle({0, 0x80, 60, 1});
    bent.settle();
    EXPECT_EQ(bent.pitch({.masterTuningHz = 0}), bent.pitch({})) << "nonsense is concert pitch";
}
