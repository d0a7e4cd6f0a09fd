// Nothing is allocated or locked while the engine processes, whatever its parameters do.
#include "AudioThreadWatch.h"
#include "TestSignals.h"

#include "engine/VoiceEngine.h"

#include <gtest/gtest.h>

#include <mutex>
#include <new>
#include <random>

using namespace AudioThreadWatch;

TEST(AudioThread, theCountersCount) {
    counting = true;
    ::operator delete(::operator new(4)); // as an expression, `new` may be left out by the compiler
    static std::mutex mutex;
    const std::unique_lock lock(mutex);
    counting = false;
    EXPECT_EQ(allocations, 2);
    EXPECT_EQ(locks, kSeesEverything ? 1 : 0);
    allocations = locks = 0;
}

TEST(AudioThread, nothingIsAllocatedOrLocked) {
    using namespace Engine;
    for (const double rate : {44100.0, 48000.0, 96000.0}) {
        Feedbacks feedbacks;
        VoiceEngine engine(feedbacks);
        engine.setSampleRate(rate);
        auto in = TestSignals::speech(rate, 3);
        std::mt19937 random(5);
        std::uniform_real_distribution<float> value(0, 1);
        Block block;
        float* const values[] = {&block.parameters.sampleRate, &block.parameters.sync,
                                 &block.parameters.frameRate,  &block.parameters.midi,
                                 &block.parameters.pitch,      &block.parameters.tracking,
                                 &block.parameters.detune,     &block.parameters.noiseAdjust,
                                 &block.parameters.mix,        &block.parameters.legacyMode};
        MidiEvent events[3];
        int samples = 0;
        for (std::size_t at = 0; at < in.size(); at += static_cast<std::size_t>(samples)) {
            samples = std::min(static_cast<int>(random() % 1500), static_cast<int>(in.size() - at));
            *values[random() % std::size(values)] = value(random);
            block.bypassed = value(random) < 0.1f;
            block.transport.songPosition = static_cast<double>(at) / rate;
            for (MidiEvent& event : events) {
                event = {
                    static_cast<int>(random() % 1500), static_cast<std::uint8_t>(0x80 + (random() % 8) * 16),
                    static_cast<std::uint8_t>(random() % 128), static_cast<std::uint8_t>(random() % 128)};
            }
            block.midiEvents = events;
            float* const both[] = {in.left.data() + at, in.right.data() + at};
            counting = true;
            engine.process(both, both, samples, block);
            counting = false;
        }
        EXPECT_GT(engine.lastFrame().number, 20u);
    }
    EXPECT_EQ(allocations, 0);
    EXPECT_EQ(locks, 0);
}
