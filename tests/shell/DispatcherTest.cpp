// What the plug-in answers its host, and how it bears hosts that are not as they should be.
#include "../Sanitizers.h"
#include "PluginHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <limits>

#if !defined(_WIN32)
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

using namespace Vst2;
using testing::ElementsAre;

TEST(Entry, givesTheRecordThatHostsRead) {
    const PluginHost host;
    ASSERT_TRUE(host);
    const AEffect& effect = *host.effect;
    EXPECT_EQ(effect.magic, fourCharacters('V', 's', 't', 'P'));
    EXPECT_EQ(effect.uniqueID, fourCharacters('B', 'k', 'M', 'm'));
    EXPECT_EQ(effect.version, 67074);
    EXPECT_EQ(effect.numPrograms, 16);
    EXPECT_EQ(effect.numParams, 10);
    EXPECT_EQ(effect.numInputs, 2);
    EXPECT_EQ(effect.numOutputs, 2);
    EXPECT_EQ(effect.flags & ~effFlagsHasEditor,
              effFlagsCanMono | effFlagsCanReplacing | effFlagsProgramChunks);
    EXPECT_EQ(effect.ioRatio, 1.0f);
    EXPECT_EQ(effect.processDoubleReplacing, nullptr);
    EXPECT_EQ(effect.initialDelay, 601); // at 44100 Hz
}

TEST(Entry, refusesHostsThatDoNotAnswer) {
    testing::internal::CaptureStderr();
    const PluginHost mute({.version = 0});
    EXPECT_FALSE(mute);
    EXPECT_EQ(PluginHost::entry()(nullptr), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Murmelon: audioMaster returned 0\nMurmelon: audioMaster returned 0\n");
}

#if !defined(_WIN32) && !defined(MURMELON_SANITIZED) // which wants all the addresses there are
TEST(Entry, whereMemoryRunsOutThereIsNoEffectButStillAHost) {
    const auto enter = PluginHost::entry();
    const audioMasterCallback master = [](AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
        return opcode == audioMasterVersion ? VstIntPtr{kVstVersion} : 0;
    };
    int refused = 0;
    for (rlim_t left = 0; left < 1500; left += 60) {
        const pid_t child = fork();
        if (child == 0) {
            std::fclose(stderr);
            malloc_trim(0); // what tests before this one have left
            rlim_t pages = 0;
            std::ifstream("/proc/self/statm") >> pages;
            const auto used = pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
            const rlimit limit = {used + left * 1024, RLIM_INFINITY};
            setrlimit(RLIMIT_AS, &limit);
            _exit(enter(master) == nullptr);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status)) << left << " KiB";
        refused += WEXITSTATUS(status);
    }
    EXPECT_GT(refused, 0);
}
#endif

TEST(Dispatcher, answersTexts) {
    PluginHost host;
    struct Row {
        VstInt32 opcode;
        VstInt32 index;
        std::size_t longest;
        const char* text;
    };
    for (const Row& row : {
             Row{effGetEffectName, 0, 32, "Murmelon"},
             {effGetVendorString, 0, 64, "Korvanta"},
             {effGetProductString, 0, 64, "Murmelon"},
             {effGetErrorText, 0, 255, ""},
             {effGetParamName, 0, 23, "Pitch"},
             {effGetParamLabel, 0, 23, "sm"},
             {effGetParamDisplay, 0, 23, "0.00"},
             {effGetParamName, 3, 23, "Noise Adjust"},
             {effGetParamDisplay, 4, 23, "60.00 Hz"},
             {effGetParamLabel, 4, 23, ""},
             {effGetParamName, 7, 23, "Sample Rate"},
             {effGetParamDisplay, 7, 23, "22"},
             {effGetParamLabel, 7, 23, "kHz"},
             {effGetParamDisplay, 9, 23, "Off"},
             {effGetParamName, 10, 23, "(nothing)"},
             {effGetParamName, -1, 23, "(nothing)"},
             {effGetProgramName, 0, 24, "Default"},
             {effGetProgramNameIndexed, 15, 24, "MIDI In"},
             {effGetProgramNameIndexed, 16, 24, "(nothing)"},
             {effGetProgramNameIndexed, -1, 24, "(nothing)"},
         }) {
        EXPECT_EQ(host.text(row.opcode, row.index, row.longest), row.text)
            << "opcode " << row.opcode << ", index " << row.index;
    }
}

TEST(Dispatcher, answersNumbers) {
    PluginHost host;
    VstPatchChunkInfo own{.version = 1,
                          .pluginUniqueID = host.effect->uniqueID,
                          .pluginVersion = 1,
                          .numElements = 10,
                          .future = {}};
    VstPatchChunkInfo foreign = own;
    foreign.pluginUniqueID = fourCharacters('A', 'b', 'c', 'd');
    struct Row {
        const char* name;
        VstInt32 opcode;
        VstInt32 index;
        VstIntPtr value;
        void* ptr;
        VstIntPtr answer;
    };
    for (const Row& row : {
             Row{"identify", effIdentify, 0, 0, nullptr, fourCharacters('N', 'v', 'E', 'f')},
             {"category", effGetPlugCategory, 0, 0, nullptr, kPlugCategEffect},
             {"version of VST", effGetVstVersion, 0, 0, nullptr, 2400},
             {"version", effGetVendorVersion, 0, 0, nullptr, 67074},
             {"program", effGetProgram, 0, 0, nullptr, 0},
             {"first automated", effCanBeAutomated, 0, 0, nullptr, 1},
             {"last automated", effCanBeAutomated, 9, 0, nullptr, 1},
             {"none automated", effCanBeAutomated, 10, 0, nullptr, 0},
             {"texts are read", effString2Parameter, 0, 0, nullptr, 1},
             {"own bank", effBeginLoadBank, 0, 0, &own, 1},
             {"own program", effBeginLoadProgram, 0, 0, &own, 1},
             {"foreign bank", effBeginLoadBank, 0, 0, &foreign, -1},
             {"foreign program", effBeginLoadProgram, 0, 0, &foreign, -1},
             {"single precision", effSetProcessPrecision, 0, 0, nullptr, 1},
             {"double precision", effSetProcessPrecision, 0, 1, nullptr, 0},
             {"MIDI in", effGetNumMidiInputChannels, 0, 0, nullptr, 16},
             {"MIDI out", effGetNumMidiOutputChannels, 0, 0, nullptr, 0},
             {"bypass", effSetBypass, 0, 0, nullptr, 1},
             {"unknown", 4711, 0, 0, nullptr, 0},
         }) {
        EXPECT_EQ(host.call(row.opcode, row.index, row.value, row.ptr), row.answer) << row.name;
    }
}

TEST(Dispatcher, canDo) {
    PluginHost host;
    struct Row {
        std::string query;
        VstIntPtr answer;
    };
    for (Row row : {Row{"conformsToWindowRules", 1}, {"receiveVstTimeInfo", 1}, {"bypass", 1},
                    {"receiveVstEvents", 1}, {"receiveVstMidiEvent", 1}, {"sendVstEvents", 0},
                    {"sendVstMidiEvent", 0}, {"Bypass", 0}, {"bypass ", 0}, {"", 0}}) {
        EXPECT_EQ(host.call(effCanDo, 0, 0, row.query.data()), row.answer) << row.query;
    }
}

TEST(Dispatcher, readsTypedValues) {
    PluginHost host;
    struct Row {
        VstInt32 index;
        std::string typed;
        VstIntPtr answer;
        const char* shown;
    };
    for (Row row : {Row{0, "-12 sm", 1, "-12.00"}, {0, "octave", 0, "-12.00"}, {7, "44 -> 48", 1, "44 -> 48"},
                    {5, "on", 1, "On"}, {4, "1/8T", 1, "1/8T"}, {8, "250", 1, "100.00"}, {10, "1", 0, "(nothing)"}}) {
        EXPECT_EQ(host.call(effString2Parameter, row.index, 0, row.typed.data()), row.answer) << row.typed;
        EXPECT_EQ(host.text(effGetParamDisplay, row.index), row.shown) << row.typed;
    }
}

TEST(Dispatcher, mapsTheHostsOrderOfParameters) {
    PluginHost host;
    for (VstInt32 index = 0; index < 10; ++index) {
        host.set(index, static_cast<float>(index) / 16);
    }
    host.set(10, 1);
    host.set(-1, 1);
    for (VstInt32 index = 0; index < 10; ++index) {
        EXPECT_EQ(host.get(index), static_cast<float>(index) / 16);
    }
    EXPECT_EQ(host.get(10), 0.0f);
    host.set(8, std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(host.get(8), 0.0f);
    host.set(8, 7);
    EXPECT_EQ(host.get(8), 1.0f);
}

TEST(Dispatcher, speakersAndPins) {
    PluginHost host;
    VstSpeakerArrangement mono = {kSpeakerArrMono, 1};
    VstSpeakerArrangement stereo = {kSpeakerArrStereo, 2};
    VstSpeakerArrangement surround = {15, 6};
    VstSpeakerArrangement lying = {kSpeakerArrStereo, 6};
    struct Row {
        VstSpeakerArrangement* in;
        VstSpeakerArrangement* out;
        VstIntPtr answer;
        VstInt32 ins;
        VstInt32 outs;
    };
    for (const Row& row : {Row{&mono, &stereo, 1, 1, 2}, {&surround, &stereo, 0, 1, 2}, {&mono, &mono, 1, 1, 1},
                           {&lying, &stereo, 0, 1, 1}, {nullptr, &stereo, 0, 1, 1}, {&stereo, &mono, 1, 2, 1},
                           {&stereo, nullptr, 0, 2, 1}, {&stereo, &stereo, 1, 2, 2}}) {
        EXPECT_EQ(host.call(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(row.in), row.out), row.answer);
        EXPECT_EQ(host.effect->numInputs, row.ins);
        EXPECT_EQ(host.effect->numOutputs, row.outs);
        VstSpeakerArrangement* in = nullptr;
        VstSpeakerArrangement* out = nullptr;
        EXPECT_EQ(host.call(effGetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&in), &out), 1);
        EXPECT_EQ(in->numChannels, row.ins);
        EXPECT_EQ(in->type, row.ins == 2 ? kSpeakerArrStereo : kSpeakerArrMono);
        EXPECT_EQ(out->numChannels, row.outs);
        VstPinProperties pin{};
        EXPECT_EQ(host.call(effGetInputProperties, 1, 0, &pin), row.ins == 2);
        EXPECT_EQ(host.call(effGetOutputProperties, 0, 0, &pin), 1);
        EXPECT_STREQ(pin.label, row.outs == 2 ? "Main Output L" : "Main Output");
        EXPECT_EQ(host.call(effGetInputProperties, -1, 0, &pin), 0);
    }
}

TEST(Habits, everyOpcodeWithNothingInIt) {
    for (const bool started : {false, true}) {
        PluginHost host;
        if (started) {
            host.start();
        }
        for (VstInt32 opcode = -1; opcode < 100; ++opcode) {
            for (const VstInt32 index : {0, -1, 99}) {
                if (opcode != effClose) {
                    host.call(opcode, index);
                }
            }
        }
        EXPECT_EQ(host.text(effGetEffectName), "Murmelon");
    }
}

TEST(Habits, unusualOrders) {
    struct Step {
        VstInt32 opcode;
        VstIntPtr value = 0;
        float opt = 0;
        VstIntPtr answer = 0;
    };
    const float infinity = std::numeric_limits<float>::infinity();
    struct Row {
        const char* name;
        std::vector<Step> steps;
    };
    for (const Row& row : {
             Row{"nothing before the first block", {}},
             {"off first", {{effMainsChanged, 0}}},
             {"opened twice", {{effOpen}, {effOpen}, {effMainsChanged, 1}, {effMainsChanged, 1}}},
             {"rate and size before opening", {{effSetSampleRate, 0, 96000, 1}, {effSetBlockSize, 64, 0, 1}, {effOpen}}},
             {"no rate at all", {{effOpen}, {effSetSampleRate, 0, 0, 0}, {effSetSampleRate, 0, -1, 0},
                                 {effSetSampleRate, 0, NAN, 0}, {effSetSampleRate, 0, infinity, 0}}},
             {"another rate while on", {{effMainsChanged, 1}, {effSetSampleRate, 0, 8000, 1}}},
         }) {
        PluginHost host;
        for (const Step& step : row.steps) {
            EXPECT_EQ(host.call(step.opcode, 0, step.value, nullptr, step.opt), step.answer) << row.name;
        }
        const Sound out = host.process(voice(20000));
        EXPECT_TRUE(allFinite(out)) << row.name;
        EXPECT_GT(level(out, 10000), 0.01) << row.name;
    }
}

TEST(Habits, anyBlockInPlaceAndDamagedSamples) {
    PluginHost host;
    host.start();
    host.set(8, 0.5f); // some of it dry
    Sound sound = voice(40000);
    for (std::size_t i = 3000; i < 3100; ++i) {
        sound.left[i] = i % 2 ? NAN : -std::numeric_limits<float>::infinity();
        sound.right[i] = std::numeric_limits<float>::denorm_min();
    }
    std::size_t at = 0;
    for (const std::size_t samples : {0u, 1u, 2u, 7u, 511u, 512u, 513u, 8192u, 0u, 20000u}) {
        float* both[] = {sound.left.data() + at, sound.right.data() + at};
        host.effect->processReplacing(host.effect, both, both, static_cast<VstInt32>(samples));
        at += samples;
    }
    sound.left.resize(at);
    sound.right.resize(at);
    EXPECT_TRUE(allFinite(sound));
    EXPECT_GT(level(sound, 10000), 0.01);

    // Nothing, or not everything, to work on.
    float* left[] = {sound.left.data(), nullptr};
    host.effect->processReplacing(host.effect, nullptr, left, 16);
    host.effect->processReplacing(host.effect, left, nullptr, 16);
    host.effect->processReplacing(host.effect, left, left, -1);
    host.effect->processReplacing(host.effect, left, left, 512);
    EXPECT_TRUE(allFinite(sound));
}

TEST(Habits, damagedChunksWhileItPlays) {
    PluginHost host;
    host.start();
    const Sound in = voice(64);
    for (const bool program : {false, true}) {
        const std::string chunk = host.chunk(program);
        for (std::size_t length = 0; length < chunk.size(); length += 13) {
            EXPECT_FALSE(host.setChunk(chunk.substr(0, length), program));
            host.process(in);
        }
        EXPECT_FALSE(host.setChunk(std::string(5000, '\xFF'), program));
        EXPECT_FALSE(host.setChunk(chunk, !program));
        EXPECT_EQ(host.text(effGetErrorText, 0, 255), "Invalid data format (unsupported version?)");
        EXPECT_TRUE(host.setChunk(chunk, program));
    }
    EXPECT_EQ(host.text(effGetProgramNameIndexed, 5), "Fifth Element");
}
