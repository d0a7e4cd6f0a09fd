// Two threads at one engine, for the thread sanitizer to watch; and engines of one process beside each other.
#include "TestSignals.h"

#include "engine/VoiceEngine.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cmath>
#include <thread>

using namespace Engine;

TEST(Threads, oneProcessesWhileAnotherChangesAndReadsEverything) {
    Feedbacks feedbacks;
    VoiceEngine engine(feedbacks);
    engine.setSampleRate(48000);
    std::array<std::atomic<float>, 10> parameters{}; // as the effect instance holds them
    std::atomic<bool> done = false;
    std::atomic<unsigned> turn = 0;
    std::thread audio([&] {
        auto in = TestSignals::speech(48000, 2);
        std::size_t at = 0;
        for (int blocks = 0; blocks < 400 || turn < 200; ++blocks, at = (at + 256) % (in.size() - 256)) {
            Block block;
            auto& p = block.parameters;
            float* const values[] = {&p.sampleRate, &p.sync,   &p.frameRate,   &p.midi, &p.pitch,
                                     &p.tracking,   &p.detune, &p.noiseAdjust, &p.mix,  &p.legacyMode};
            for (std::size_t i = 0; i < parameters.size(); ++i) {
                *values[i] = parameters[i].load(std::memory_order_relaxed);
            }
            float* const both[] = {&in.left[at], &in.right[at]};
            engine.process(both, both, 256, block);
        }
        done = true;
    });
    int torn = 0;
    while (!done) {
        parameters[turn % 10].store(static_cast<float>(turn / 10 % 5) / 4, std::memory_order_relaxed);
        ++turn;
        const FilterSnapshot filter = feedbacks.filter();
        // Whole or not there: the order belongs to the rate, and the first coefficient is 1.
        const bool known =
            filter.order == 10 || filter.order == 14 || filter.order == 28 || filter.order == 61;
        torn += filter.order != 0 && !(known && filter.coefficients[0] == 1) ? 1 : 0;
        const auto beyond = static_cast<std::size_t>(filter.order);
        torn += beyond < 64 && filter.coefficients[beyond] != 0 ? 1 : 0;
        torn += std::isfinite(feedbacks.volume.load() + feedbacks.pitch.load() + feedbacks.frequency.load())
                    ? 0
                    : 1;
        torn += engine.latencySamples(1) == 601 ? 0 : 1;
        std::this_thread::yield();
    }
    audio.join();
    EXPECT_EQ(torn, 0);
}

TEST(Threads, aFilterIsReadWhole) {
    Feedbacks feedbacks;
    std::atomic<bool> done = false;
    std::jthread writer([&] {
        FilterSnapshot filter;
        for (int turn = 0; turn < 100000; ++turn) {
            filter.order = 1 + turn % 64;
            filter.coefficients.fill(static_cast<float>(filter.order));
            feedbacks.publishFilter(filter);
        }
        done = true;
    });
    int torn = 0;
    while (!done) {
        const FilterSnapshot filter = feedbacks.filter();
        for (const float c : filter.coefficients) {
            torn += static_cast<int>(c) != filter.order ? 1 : 0;
        }
    }
    EXPECT_EQ(torn, 0);
}

TEST(Threads, instancesAreMadeAndPlayedBesideEachOther) {
    const auto play = [] {
        Feedbacks feedbacks;
        VoiceEngine engine(feedbacks);
        auto in = TestSignals::speech(44100, 0.3);
        for (const double rate : {44100.0, 48000.0, 22050.0}) {
            engine.setSampleRate(rate);
            float* const both[] = {in.left.data(), in.right.data()};
            engine.process(both, both, static_cast<int>(in.size()), Block{});
        }
        return in.left;
    };
    const auto wanted = play();
    std::array<std::vector<float>, 3> results;
    {
        std::vector<std::jthread> threads;
        for (auto& result : results) {
            threads.emplace_back([&] { result = play(); });
        }
    }
    for (const auto& result : results) {
        EXPECT_EQ(result, wanted);
    }
}
