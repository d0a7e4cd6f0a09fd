// Plays a signal through an engine, block by block, and keeps what came out and what was analysed.
#pragma once

#include "TestSignals.h"

#include "engine/VoiceEngine.h"

#include <algorithm>
#include <functional>
#include <vector>

struct Played {
    TestSignals::Stereo out;
    std::vector<Engine::FrameRecord> frames; // their coefficients point nowhere
    std::vector<std::vector<float>> coefficients;
};

// `change` may alter the block that starts at the given sample.
using BlockChange = std::function<void(std::size_t position, int samples, Engine::Block& block)>;

struct Player {
    explicit Player(double rate) { engine.setSampleRate(rate); }

    // A row of block lengths, used in turn. One of them must not be 0.
    Played play(const TestSignals::Stereo& in, const std::vector<int>& blocks = {64},
                const BlockChange& change = {}) {
        Played played{TestSignals::Stereo(in.size()), {}, {}};
        std::size_t turn = 0;
        for (std::size_t at = 0; at < in.size(); ++turn) {
            const auto wanted = static_cast<std::size_t>(blocks[turn % blocks.size()]);
            const auto samples = static_cast<int>(std::min(wanted, in.size() - at));
            Engine::Block now = block;
            if (change) {
                change(at, samples, now);
            }
            const float* ins[2] = {in.left.data() + at, in.right.data() + at};
            float* outs[2] = {played.out.left.data() + at, played.out.right.data() + at};
            engine.process(ins, outs, samples, now);
            keepFrame(played);
            at += static_cast<std::size_t>(samples);
        }
        return played;
    }

    Engine::Feedbacks feedbacks;
    Engine::VoiceEngine engine{feedbacks};
    Engine::Block block;

private:
    void keepFrame(Played& played) const {
        const Engine::FrameRecord frame = engine.lastFrame();
        if (frame.number != (played.frames.empty() ? before_ : played.frames.back().number)) {
            played.frames.push_back(frame);
            played.coefficients.emplace_back(frame.coefficients.begin(), frame.coefficients.end());
        }
    }

    std::uint64_t before_ = 0;
};

// The value of `sampleRate` for a step.
inline float rateStep(int step) {
    return static_cast<float>(step) / 3;
}
