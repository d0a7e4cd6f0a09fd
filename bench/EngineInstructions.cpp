// Plays speech through the whole effect, for callgrind to count: 48 kHz, stereo, blocks of 512, 80 frames a
// second, mix 1. Prints how many samples went through `process`. See docs/performance.md.
#include "engine/VoiceEngine.h"

#include <sndfile.h>

#include <cstdio>
#include <cstdlib>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr int kBlock = 512;

// Stereo, one recording after the other, mono on both sides.
struct Input {
    std::vector<float> left;
    std::vector<float> right;
};

void append(Input& input, const char* path) {
    SF_INFO info{};
    SNDFILE* const file = sf_open(path, SFM_READ, &info);
    if (file == nullptr) {
        throw std::runtime_error(std::string("Cannot read ") + path);
    }
    const auto channels = static_cast<std::size_t>(info.channels);
    std::vector<float> samples(static_cast<std::size_t>(info.frames) * channels);
    sf_readf_float(file, samples.data(), info.frames);
    sf_close(file);
    for (std::size_t i = 0; i < samples.size(); i += channels) {
        input.left.push_back(samples[i]);
        input.right.push_back(samples[i + channels - 1]);
    }
}

std::size_t play(const Input& input, float sampleRate) {
    Engine::Feedbacks feedbacks;
    Engine::VoiceEngine engine(feedbacks);
    engine.setSampleRate(48000);
    Engine::Block block;
    block.parameters.sampleRate = sampleRate;
    block.parameters.frameRate = 1;
    std::vector<float> left(kBlock), right(kBlock);
    std::size_t at = 0;
    for (; at + kBlock <= input.left.size(); at += kBlock) {
        const float* const in[] = {&input.left[at], &input.right[at]};
        float* const out[] = {left.data(), right.data()};
        engine.process(in, out, kBlock, block);
    }
    return at;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s STEP(0..3) RECORDING...\n", argv[0]);
        return 2;
    }
    Input input;
    for (const char* path : std::span(argv + 2, argv + argc)) {
        append(input, path);
    }
    std::printf("%zu\n", play(input, std::strtof(argv[1], nullptr) / 3));
    return 0;
}
