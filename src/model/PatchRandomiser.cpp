#include "model/PatchRandomiser.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <span>

namespace Model {

namespace {

constexpr int kWarmUpSteps = 32;

std::uint32_t nextUse() {
    static constinit std::atomic<std::uint32_t> counter{0};
    return counter.fetch_add(1, std::memory_order_relaxed) + 1;
}

template <class Unit>
std::uint64_t countOf(auto duration) {
    return static_cast<std::uint64_t>(std::chrono::duration_cast<Unit>(duration).count());
}

template <class Value>
Value choose(std::span<const Value> values, float random) {
    const auto index = static_cast<std::size_t>(random * static_cast<float>(values.size()));
    return values[std::min(index, values.size() - 1)];
}

float between(float low, float high, float random) {
    return low + (high - low) * random;
}

// Intervals that sit well under or over the source; the more common ones stand more often.
constexpr std::array kSemitones = {-24.0f, -12.0f, -12.0f, -7.0f, -5.0f, -3.0f, 0.0f,  0.0f,
                                   0.0f,   0.0f,   0.0f,   4.0f,  5.0f,  7.0f,  12.0f, 12.0f};

// Monotone like a robot, half as expressive as the source, as the source, exaggerated.
constexpr std::array kTrackingPercent = {0.0f,   0.0f,   0.0f,   50.0f,  100.0f,
                                         100.0f, 100.0f, 100.0f, 100.0f, 200.0f};

// The display number of a linear parameter as its normalised value.
float normalised(int id, float shown) {
    const auto& record = Parameters::kTable[static_cast<std::size_t>(id)];
    return (shown - record.minimum) / (record.maximum - record.minimum);
}

float randomSampleRate(float random) {
    static constexpr std::array kSteps = {0.0f, 1.0f / 3, 2.0f / 3, 1.0f};
    return choose<float>(kSteps, random);
}

// From about 7 frames a second up, or from quarter notes when synced: below, speech becomes a row of vowels.
float randomFrameRate(float random) {
    return between(0.45f, 1.0f, random);
}

float randomPitch(float random) {
    return normalised(Parameters::pitch, choose<float>(kSemitones, random));
}

float randomTracking(float random) {
    return normalised(Parameters::tracking, choose<float>(kTrackingPercent, random));
}

// One voice in half of the patches, else a second that is at most some 80 cents away.
float randomDetune(float random) {
    return random < 0.5f ? 0.0f : between(0.03f, 0.25f, 2 * random - 1);
}

// Most often near the middle, seldom all breath or all buzz.
float randomNoiseAdjust(float random) {
    const float centred = 2 * random - 1;
    return 0.5f + 0.5f * centred * centred * centred;
}

float randomMix(float random) {
    return between(0.7f, 1.0f, random);
}

float randomSync(float random) {
    return random < 0.75f ? 0.0f : 1.0f;
}

float off(float) {
    return 0;
}

constexpr std::array<float (*)(float), Parameters::kCount> kRules = {
    randomSampleRate, randomSync,   randomFrameRate,   off /* midi */, randomPitch,
    randomTracking,   randomDetune, randomNoiseAdjust, randomMix,      off /* legacyMode */};

} // namespace

RandomSeed RandomSeed::now() {
    using namespace std::chrono;
    const auto ticks = steady_clock::now().time_since_epoch();
    return {static_cast<std::uint32_t>(countOf<seconds>(system_clock::now().time_since_epoch())),
            static_cast<std::uint32_t>(countOf<milliseconds>(ticks)), countOf<nanoseconds>(ticks)};
}

PatchRandomiser::PatchRandomiser(const RandomSeed& seed, std::uint32_t use)
    : x_(seed.calendarSeconds ^ static_cast<std::uint32_t>(seed.performanceCounter)),
      y_(seed.tickMilliseconds ^ static_cast<std::uint32_t>(seed.performanceCounter >> 32)) {
    x_ = (((use << 16) | (use >> 16)) + x_) | 1; // never both words 0, where the generator would stay
    for (int i = 0; i < kWarmUpSteps; ++i) {
        step();
    }
}

PatchRandomiser::PatchRandomiser() : PatchRandomiser(RandomSeed::now(), nextUse()) {}

std::uint32_t PatchRandomiser::step() {
    const std::uint32_t t = x_ ^ (x_ << 10);
    x_ = y_;
    y_ = y_ ^ t ^ ((t ^ (y_ >> 3)) >> 10);
    return y_;
}

std::string PatchRandomiser::name() {
    const auto fiveBitsUpTo = [this](std::uint32_t most) {
        std::uint32_t bits = 0;
        do {
            bits = step() & 31;
        } while (bits > most);
        return bits;
    };
    std::string name(fiveBitsUpTo(16) + 6, '\0');
    for (char& letter : name) {
        letter = static_cast<char>('a' + fiveBitsUpTo(25));
    }
    return name;
}

void PatchRandomiser::randomise(Patch& patch) {
    const std::string newName = name();
    std::array<float, Parameters::kCount> values;
    for (int id = 0; id < Parameters::kCount; ++id) {
        const auto random = static_cast<float>(step()) * 0x1p-32f;
        values[static_cast<std::size_t>(id)] = randomParameterValue(patch, id, random);
    }
    patch.setValues(0, values);
    patch.setName(newName);
}

float randomParameterValue(const Patch& /*patch*/, int index, float random) {
    return kRules[static_cast<std::size_t>(index)](random);
}

} // namespace Model
