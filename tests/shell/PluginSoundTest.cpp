// What the host hears: timing of parameters and MIDI within a block, channels, bypass, latency; and what MIDI
// does by the configuration.
#include "PluginHost.h"

#include "model/MidiConfig.h"
#include "model/Programs.h"
#include "parameters/ParameterTable.h"
#include "state/Chunks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <thread>

using namespace Vst2;
using Told = PluginHost::Told;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

enum HostIndex : VstInt32 { kPitch = 0, kFrameRate = 4, kSync = 5, kMidi = 6, kSampleRate = 7, kMix = 8 };

// Sixteen programs that differ in pitch, and this configuration.
void configure(PluginHost& host, const Model::MidiConfig& config, float midiOn = 0) {
    Model::Programs programs;
    for (int program = 0; program < Model::Programs::kCount; ++program) {
        programs[program].setValue(Parameters::pitch, static_cast<float>(program) / 16);
        programs[program].setValue(Parameters::midi, midiOn);
    }
    ASSERT_TRUE(host.setChunk(Bnk::writeBankChunk(programs, config)));
}

Model::MidiConfig withController(int controller, int parameter) {
    Model::MidiConfig config;
    config.assignments.assign(parameter, controller);
    return config;
}

} // namespace

TEST(Timing, midiActsAtItsSample) {
    constexpr std::size_t kBefore = 20000;
    constexpr std::size_t kAt = 137;
    const Sound in = voice(kBefore + 512);
    struct Row {
        const char* name;
        Model::MidiConfig config;
        float midiOn;
        int status, data1, data2;
        std::function<void(PluginHost&)> directly; // the same, by the host between two blocks
    };
    Model::MidiConfig programs;
    programs.programChanges = true;
    for (const Row& row : {
             Row{"controller", withController(7, Parameters::mix), 0, 0xB0, 7, 0,
                 [](PluginHost& host) { host.set(kMix, 0); }},
             {"program change", programs, 0, 0xC0, 12, 0, [](PluginHost& host) { host.call(effSetProgram, 0, 12); }},
             {"note", {}, 1, 0x90, 72, 100, [](PluginHost& host) { host.midi(0, 0x90, 72, 100); }},
         }) {
        PluginHost whole;
        PluginHost cut;
        for (PluginHost* host : {&whole, &cut}) {
            host->start();
            configure(*host, row.config, row.midiOn);
            host->process(in, 0, kBefore);
        }
        whole.midi(kAt, row.status, row.data1, row.data2);
        const Sound out = whole.process(in, kBefore, 512);
        const Sound before = cut.process(in, kBefore, kAt);
        row.directly(cut);
        const Sound after = cut.process(in, kBefore + kAt, 512 - kAt);
        double difference = 0;
        for (std::size_t i = 0; i < 512; ++i) {
            const float expected = i < kAt ? before.left[i] : after.left[i - kAt];
            difference = std::max(difference, static_cast<double>(std::abs(out.left[i] - expected)));
        }
        EXPECT_EQ(difference, 0) << row.name;
    }
}

TEST(Timing, eventsOutOfOrderOrBeyondTheBlockStillCount) {
    PluginHost host;
    host.start();
    configure(host, withController(7, Parameters::mix));
    host.midi(400, 0xB0, 7, 100);
    host.midi(20, 0xB0, 7, 50);
    host.process(voice(512));
    EXPECT_EQ(host.get(kMix), 100.0f / 127);
    host.midi(100000, 0xB0, 7, 25);
    host.midi(-5, 0xB0, 7, 12);
    host.process(voice(512));
    EXPECT_EQ(host.get(kMix), 25.0f / 127);
}

TEST(Timing, aFloodOfMidiLeavesNoNoteHanging) {
    PluginHost host;
    host.start();
    configure(host, {}, 1);
    const Sound in = voice(24000);
    for (int i = 0; i < 5000; ++i) {
        host.midi(i % 512, 0x90 + i % 16, i % 128, 100);
    }
    host.process(in, 0, 512);
    EXPECT_LT(level(host.process(in), 12000), 1e-4); // the gate is shut
    host.midi(0, 0x90, 60, 100);
    EXPECT_GT(level(host.process(in), 12000), 1e-2);
}

TEST(Channels, monoAndAccumulating) {
    const Sound in = voice(9000);
    PluginHost stereo;
    stereo.start();
    const Sound reference = stereo.process(in);

    PluginHost adding;
    adding.start();
    Sound sum(in.size());
    sum.left.assign(in.size(), 0.25f);
    float* ins[] = {const_cast<float*>(in.left.data()), const_cast<float*>(in.right.data())};
    float* outs[] = {sum.left.data(), sum.right.data()};
    adding.effect->process(adding.effect, ins, outs, 900);
    for (std::size_t i = 0; i < 900; ++i) {
        ASSERT_NEAR(sum.left[i], reference.left[i] + 0.25f, 1e-5);
        ASSERT_NEAR(sum.right[i], reference.right[i], 1e-5);
    }

    // The same signal on both sides, then as one channel in; and one channel out is the middle of two.
    Sound middle = in;
    middle.right = middle.left;
    VstSpeakerArrangement one = {kSpeakerArrMono, 1};
    VstSpeakerArrangement two = {kSpeakerArrStereo, 2};
    PluginHost both;
    both.start();
    const Sound expected = both.process(middle, 0, 1000);
    for (auto* outArrangement : {&one, &two}) {
        PluginHost mono;
        mono.call(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&one), outArrangement);
        mono.start();
        Sound out(1000);
        float* monoIn[] = {middle.left.data()};
        float* monoOut[] = {out.left.data(), outArrangement == &two ? out.right.data() : nullptr};
        mono.effect->processReplacing(mono.effect, monoIn, monoOut, 1000);
        for (std::size_t i = 0; i < 1000; ++i) {
            const float left = expected.left[i];
            const float right = expected.right[i];
            ASSERT_NEAR(out.left[i], outArrangement == &two ? left : (left + right) / 2, 1e-6);
        }
    }
}

// However long the block, gains ramp and parameters glide once from its start to its end.
TEST(Channels, aLongBlockIsOneBlockForEveryOutput) {
    const Sound in = voice(9000);
    VstSpeakerArrangement one = {kSpeakerArrMono, 1};
    VstSpeakerArrangement two = {kSpeakerArrStereo, 2};
    const auto played = [&](bool adding, VstSpeakerArrangement& outArrangement) {
        PluginHost host;
        host.call(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&two), &outArrangement);
        host.start();
        Sound out(in.size());
        const auto entry = adding ? host.effect->process : host.effect->processReplacing;
        for (std::size_t from = 0; from < in.size(); from += 4500) {
            float* ins[] = {const_cast<float*>(in.left.data()) + from,
                            const_cast<float*>(in.right.data()) + from};
            float* outs[] = {out.left.data() + from, out.right.data() + from};
            entry(host.effect, ins, outs, 4500);
            host.set(kMix, 0.1f);
            host.set(kPitch, 0.55f);
        }
        return out;
    };
    const Sound reference = played(false, two);
    const Sound sum = played(true, two);
    const Sound middle = played(false, one);
    for (std::size_t i = 0; i < in.size(); ++i) {
        ASSERT_EQ(sum.left[i], reference.left[i]) << i;
        ASSERT_EQ(sum.right[i], reference.right[i]) << i;
        ASSERT_NEAR(middle.left[i], (reference.left[i] + reference.right[i]) / 2, 1e-6) << i;
        ASSERT_EQ(middle.right[i], 0) << i;
    }
}

TEST(Channels, withoutAnInputTheOutputsAreSilent) {
    PluginHost host;
    host.start();
    Sound out(300);
    float* outs[] = {out.left.data(), out.right.data()};
    float* none[] = {nullptr, nullptr};
    for (float** const ins : {static_cast<float**>(nullptr), none}) {
        out.left.assign(300, 1);
        out.right.assign(300, 1);
        host.effect->processReplacing(host.effect, ins, outs, 300);
        EXPECT_EQ(out, Sound(300));
    }
}

TEST(Latency, isThatOfTheDryPathAndToldFromTheMainThread) {
    PluginHost host;
    host.start(48000);
    host.set(kMix, 0);
    Sound in(8192);
    in.left[0] = in.right[0] = 1;
    for (const float rate : {0.0f, 1 / 3.0f, 2 / 3.0f, 1.0f}) {
        host.set(kSampleRate, rate);
        host.process(Sound(8192)); // let it settle
        host.everythingTold.clear();
        host.call(effEditIdle);
        const Sound out = host.process(in);
        const auto peak = std::max_element(out.left.begin(), out.left.end()) - out.left.begin();
        EXPECT_EQ(peak, host.effect->initialDelay);
    }

    // From the audio thread nothing is told, whatever it calls.
    host.everythingTold.clear();
    const VstInt32 before = host.effect->initialDelay;
    std::thread audio([&] {
        host.process(in);
        host.set(kSampleRate, 0);
        host.midi(0, 0x90, 60, 100);
        host.process(in);
        host.call(effGetProgram);
    });
    audio.join();
    EXPECT_THAT(host.told(audioMasterIOChanged), IsEmpty());
    EXPECT_EQ(host.effect->initialDelay, before);
    host.call(effEditIdle);
    EXPECT_THAT(host.told(audioMasterIOChanged), ElementsAre(Told{audioMasterIOChanged, 0, 0, false}));
    EXPECT_NE(host.effect->initialDelay, before);
    host.call(effEditIdle);
    EXPECT_EQ(host.told(audioMasterIOChanged).size(), 1u);

    host.call(effSetSampleRate, 0, 0, nullptr, 96000);
    EXPECT_EQ(host.told(audioMasterIOChanged).size(), 2u);
    PluginHost unopened; // a host that has not taken the effect over yet reads the record
    unopened.call(effSetSampleRate, 0, 0, nullptr, 96000);
    EXPECT_THAT(unopened.told(audioMasterIOChanged), IsEmpty());
    unopened.set(kSampleRate, 0);
    unopened.call(effOpen);
    EXPECT_EQ(unopened.effect->initialDelay, host.effect->initialDelay);
}

TEST(Bypass, isTheDrySignalWithTheSameDelayAndNoClick) {
    PluginHost host;
    host.start();
    const Sound in = voice(48000);
    host.process(in, 0, 24000);
    host.call(effSetBypass, 0, 1);
    const Sound fading = host.process(in, 24000, 4800);
    const Sound out = host.process(in, 28800, 9600);
    const auto delay = static_cast<std::size_t>(host.effect->initialDelay);
    for (std::size_t i = 0; i < out.size(); ++i) {
        ASSERT_NEAR(out.left[i], in.left[28800 + i - delay], 1e-6);
    }
    EXPECT_TRUE(allFinite(fading));
    host.call(effSetBypass, 0, 0);
    host.process(in, 0, 9600);
    EXPECT_GT(std::abs(host.process(in, 9600, 100).left[50] - in.left[9650 - delay]), 1e-3);
}

TEST(Tempo, drivesSyncedFramesAndTheSongOnlyWhileItMoves) {
    // With "Stop" as the division the clock stands; the voice of before sounds on when the input has ended.
    const Sound in = voice(24000);
    struct Row {
        const char* name;
        float division;
        double position;
        double moves; // quarter notes a block
        bool soundsOn;
    };
    for (const Row& row : {Row{"stopped clock", 0.0f, 0, 0.02, true}, Row{"moving song", 1.0f, 0, 0.02, false},
                           Row{"song that stands still", 1.0f, 0.26, 0, false}}) {
        PluginHost host;
        host.start();
        host.process(in);
        host.set(kSync, 1);
        host.set(kFrameRate, row.division);
        VstTimeInfo time{};
        time.flags = kVstTempoValid | kVstPpqPosValid;
        time.tempo = 120;
        time.ppqPos = row.position;
        double last = 0;
        for (int block = 0; block < 100; ++block, time.ppqPos += row.moves) {
            host.time = time;
            last = level(host.process(Sound(480)));
        }
        EXPECT_EQ(last > 1e-4, row.soundsOn) << row.name << ": " << last;
    }
}

TEST(Resume, leavesNothingOfBefore) {
    PluginHost host;
    host.start();
    configure(host, {}, 1);
    host.midi(0, 0x90, 60, 100);
    host.process(voice(24000));
    host.midi(0, 0x90, 64, 100); // waits for a block that does not come
    host.call(effMainsChanged, 0, 0);
    host.call(effMainsChanged, 0, 1);
    EXPECT_LT(level(host.process(voice(24000)), 4000), 1e-4);
}

TEST(MidiConfiguration, controllersMoveParametersAndReportOnTheNextIdle) {
    PluginHost host;
    host.start();
    Model::MidiConfig config = withController(20, Parameters::pitch);
    config.assignments.assign(Parameters::sampleRate, 21);
    config.inputChannel = 3;
    configure(host, config);
    host.everythingTold.clear();
    host.midi(0, 0xB0, 20, 127); // another channel
    host.process(Sound(64));
    EXPECT_EQ(host.get(kPitch), 0.0f);
    host.midi(0, 0xB3, 20, 100);
    host.midi(10, 0xB3, 20, 127);
    host.midi(20, 0xB3, 21, 0);
    host.process(Sound(64));
    EXPECT_EQ(host.get(kPitch), 1.0f);
    host.call(effGetProgram);
    EXPECT_THAT(host.told(audioMasterAutomate), IsEmpty());
    host.call(effEditIdle);
    EXPECT_THAT(host.told(audioMasterAutomate), ElementsAre(Told{audioMasterAutomate, kSampleRate, 0, false},
                                                            Told{audioMasterAutomate, kPitch, 1, false}));
    EXPECT_EQ(host.told(audioMasterIOChanged).size(), 1u);
    host.call(effEditIdle);
    EXPECT_EQ(host.told(audioMasterAutomate).size(), 2u);
}

TEST(MidiConfiguration, programsAreSwitchedAndProgramKeysNotPlayed) {
    struct Row {
        const char* name;
        bool changes, keys;
        int status, data1, data2;
        int program;
        bool plays;
    };
    for (const Row& row : {Row{"change", true, false, 0xC0, 5, 0, 5, false},
                           {"change beyond the slots", true, false, 0xC0, 16, 0, 0, false},
                           {"changes are off", false, false, 0xC0, 5, 0, 0, false},
                           {"first key", false, true, 0x90, 40, 100, 0, false},
                           {"last key", false, true, 0x90, 55, 100, 15, false},
                           {"key beyond", false, true, 0x90, 56, 100, 0, true},
                           {"keys are off", false, false, 0x90, 45, 100, 0, true}}) {
        PluginHost host;
        host.start();
        Model::MidiConfig config;
        config.programChanges = row.changes;
        config.programKeysEnabled = row.keys;
        config.programKeysBaseNote = 40;
        configure(host, config, 1);
        const Sound in = voice(24000);
        host.process(in);
        host.everythingTold.clear();
        host.midi(0, row.status, row.data1, row.data2);
        const Sound out = host.process(in);
        EXPECT_EQ(host.call(effGetProgram), row.program) << row.name;
        EXPECT_EQ(level(out, 12000) > 1e-3, row.plays) << row.name;
        EXPECT_THAT(host.told(audioMasterUpdateDisplay), IsEmpty());
        host.call(effEditIdle);
        EXPECT_EQ(host.told(audioMasterUpdateDisplay).size(), row.program != 0 || row.data1 == 40 ? 1u : 0u)
            << row.name;
    }
}
