// How long the engine takes: the whole effect at each rate step, and its two heaviest parts alone. Time is
// given per host sample where it says so, and per frame or internal sample elsewhere.
#include "engine/FrameAnalysis.h"
#include "engine/InputHistory.h"
#include "engine/SynthesisFilter.h"
#include "engine/VoiceEngine.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace {

using namespace Engine;

constexpr double kHostRate = 48000;
constexpr int kBlock = 512;

// A voice of gliding pitch with some breath, never silent: the dearest kind of input.
std::vector<float> voice(std::size_t samples) {
    std::mt19937 random(1);
    std::normal_distribution<double> breath(0, 0.003);
    std::vector<float> x(samples);
    double phase = 0;
    for (std::size_t i = 0; i < samples; ++i) {
        const double t = static_cast<double>(i) / kHostRate;
        phase += (150 + 50 * std::sin(4 * t)) / kHostRate;
        const double angle = 2 * std::numbers::pi * phase;
        x[i] = static_cast<float>(0.2 * std::sin(angle) / (1.3 - std::cos(angle)) + breath(random));
    }
    return x;
}

void wholeEffect(benchmark::State& state) {
    Feedbacks feedbacks;
    VoiceEngine engine(feedbacks);
    engine.setSampleRate(kHostRate);
    Block block;
    block.parameters.sampleRate = static_cast<float>(state.range(0)) / 3;
    block.parameters.frameRate = static_cast<float>(std::cbrt(static_cast<double>(state.range(1)) / 80));
    const auto in = voice(kBlock * 200);
    std::vector<float> left(kBlock), right(kBlock);
    std::size_t at = 0;
    for (auto _ : state) {
        const float* const ins[] = {&in[at], &in[at]};
        float* const outs[] = {left.data(), right.data()};
        engine.process(ins, outs, kBlock, block);
        benchmark::DoNotOptimize(left.data());
        at = (at + kBlock) % in.size();
    }
    const double samples = static_cast<double>(state.iterations()) * kBlock;
    state.counters["per_sample"] =
        benchmark::Counter(samples, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["times_real_time"] = benchmark::Counter(samples / kHostRate, benchmark::Counter::kIsRate);
}
BENCHMARK(wholeEffect)->ArgNames({"step", "frames"})->ArgsProduct({{0, 1, 2, 3}, {60, 80}});

void analysisOfAFrame(benchmark::State& state) {
    const auto rates = makeRateConfigurations(kHostRate);
    const auto step = static_cast<std::size_t>(state.range(0));
    FrameAnalysis analysis(rates);
    analysis.setStep(static_cast<int>(step));
    const int length = rates[step].frameLength;
    InputHistory history(length, length);
    float* const pairs = history.add(length);
    const auto in = voice(static_cast<std::size_t>(length));
    for (std::size_t i = 0; i < in.size(); ++i) {
        pairs[2 * i] = pairs[2 * i + 1] = in[i];
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(analysis.analyse(history.frame(length, 0), 100));
    }
}
BENCHMARK(analysisOfAFrame)->ArgName("step")->DenseRange(0, 3);

void synthesisFilter(benchmark::State& state) {
    const auto order = static_cast<std::size_t>(state.range(0));
    std::vector<float> coefficients(order);
    for (std::size_t k = 1; k < order; ++k) {
        coefficients[k] = k % 2 == 0 ? -0.4f / static_cast<float>(k) : 0.4f / static_cast<float>(k);
    }
    SynthesisFilter filter;
    filter.setCoefficients(coefficients);
    constexpr int kRun = SynthesisFilter::kMaxRun;
    std::vector<float> signal(2 * kRun);
    const auto in = voice(signal.size());
    for (auto _ : state) {
        signal = in;
        filter.process(signal.data(), kRun);
        benchmark::DoNotOptimize(signal.data());
    }
    state.counters["per_sample"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * kRun,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(synthesisFilter)->ArgName("order")->Arg(10)->Arg(14)->Arg(28)->Arg(61);

} // namespace
