// Nothing is allocated or locked on the audio thread of the whole plug-in: MIDI, controllers, program switches,
// parameters, mono, bypass.
#include "../engine/AudioThreadWatch.h"
#include "PluginHost.h"

#include "model/MidiConfig.h"
#include "model/Programs.h"
#include "state/Chunks.h"

#include <gtest/gtest.h>

#include <random>

using namespace AudioThreadWatch;
using namespace Vst2;

TEST(PluginAudioThread, nothingIsAllocatedOrLocked) {
    PluginHost host;
    host.start();
    Model::MidiConfig config;
    config.programChanges = true;
    config.programKeysEnabled = true;
    for (int parameter = 0; parameter < Parameters::kCount; ++parameter) {
        config.assignments.assign(parameter, 20 + parameter);
    }
    ASSERT_TRUE(host.setChunk(Bnk::writeBankChunk(Model::Programs(), config)));
    VstSpeakerArrangement one = {kSpeakerArrMono, 1};
    VstSpeakerArrangement two = {kSpeakerArrStereo, 2};
    Sound sound = voice(4096);
    float* both[] = {sound.left.data(), sound.right.data()};
    std::mt19937 random(3);
    VstTimeInfo time{};
    time.flags = kVstTempoValid | kVstPpqPosValid | kVstTransportPlaying;
    time.tempo = 131;
    host.time = time;
    for (int block = 0; block < 400; ++block) {
        if (block % 50 == 0) {
            host.call(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(block % 100 ? &two : &one), &two);
        }
        host.call(effSetBypass, 0, random() % 10 == 0);
        host.time->ppqPos += 0.03;
        counting = true;
        for (int i = 0; i < 6; ++i) {
            host.midi(static_cast<VstInt32>(random() % 600), static_cast<int>(0x80 + random() % 0x80),
                      static_cast<int>(random() % 128), static_cast<int>(random() % 128));
        }
        host.set(static_cast<VstInt32>(random() % 10), static_cast<float>(random() % 100) / 99);
        const auto entry = random() % 2 ? host.effect->process : host.effect->processReplacing;
        entry(host.effect, both, both, static_cast<VstInt32>(random() % 600));
        counting = false;
    }
    EXPECT_EQ(allocations, 0);
    EXPECT_EQ(locks, 0);
}
