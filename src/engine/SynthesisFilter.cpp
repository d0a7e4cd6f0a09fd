#include "engine/SynthesisFilter.h"

#include "engine/Simd.h"

#include <algorithm>

namespace Engine {

namespace {

constexpr float kHistoryLimit = 100;

} // namespace

void SynthesisFilter::clear() noexcept {
    c_ = {};
    last_ = 0;
    vectorLast_ = 1;
    history_ = {};
}

void SynthesisFilter::setCoefficients(std::span<const float> c) noexcept {
    last_ = static_cast<int>(c.size()) - 1;
    vectorLast_ = (std::max(last_, 1) + kUnroll - 2) / kUnroll * kUnroll + 1;
    for (std::size_t k = 1; k < static_cast<std::size_t>(kTaps); ++k) {
        store(&c_[kLanes * k], splat(k < c.size() ? c[k] : 0));
    }
}

void SynthesisFilter::process(float* signal, int count) noexcept {
    float* now = history_.data() + 2 * kTaps;
    int left = count;
    const auto advance = [&](int samples) {
        now += 2 * samples;
        signal += 2 * samples;
        left -= samples;
    };
    while (left > 0) {
        if (left >= 8 && processVectors<4>(signal, now)) {
            advance(8);
        } else if (left >= 2 && processVectors<1>(signal, now)) {
            advance(2);
        } else {
            processOne(signal, now);
            advance(1);
        }
    }
    std::copy(now - 2 * kTaps, now, history_.data());
}

// 2 * Pairs samples at once. Each sum runs from the oldest sample to the newest, so that a sample rounds the
// same whatever is computed beside it. Gives up, with nothing written, where an output would be clamped.
template <int Pairs>
bool SynthesisFilter::processVectors(float* signal, float* history) const noexcept {
    Float4 y[Pairs]; // y[j]: samples 2 j and 2 j + 1
    for (int j = 0; j < Pairs; ++j) {
        y[j] = load(signal + 4 * j);
    }
    addPast(y, history);
    addRecent(y, loadPair(history - 2));
    Int4 within = Int4{} - 1;
    for (const Float4& two : y) {
        within &= magnitude(two) <= splat(kHistoryLimit);
    }
    if (laneBits(within) != 0xf) {
        return false;
    }
    for (int j = 0; j < Pairs; ++j) {
        store(signal + 4 * j, y[j]);
        store(history + 4 * j, y[j]);
    }
    return true;
}

// What lies wholly in the past: for y[j], the taps down to 2 j + 2.
template <std::size_t Pairs>
void SynthesisFilter::addPast(Float4 (&y)[Pairs], const float* history) const noexcept {
    const float* const c = c_.data();
    const float* past = history - 2 * vectorLast_;
    for (const float* k = c + kLanes * vectorLast_; k > c + kLanes; k -= kLanes * kUnroll) {
        for (int i = 0; i < kUnroll; ++i, past += 2) {
            const Float4 two = load(past);
            for (std::size_t j = 0; j < Pairs; ++j) {
                y[j] += two * loadAligned(k + kLanes * (2 * static_cast<int>(j) - i));
            }
        }
    }
}

// The taps below, which meet the samples made here; `before` is the sample before them.
template <std::size_t Pairs>
void SynthesisFilter::addRecent(Float4 (&y)[Pairs], Float4 before) const noexcept {
    const auto tap = [this](std::size_t k) { return loadAligned(c_.data() + kLanes * k); };
    Float4 odd[Pairs]; // odd[j]: samples 2 j - 1 and 2 j
    for (std::size_t j = 0; j < Pairs; ++j) {
        for (std::size_t m = 0; m < j; ++m) {
            y[j] += odd[m] * tap(2 * (j - m) + 1);
            y[j] += y[m] * tap(2 * (j - m));
        }
        y[j] += before * tap(1);
        y[j] += __builtin_shufflevector(Float4{}, y[j], 0, 1, 4, 5) * tap(1);
        odd[j] = __builtin_shufflevector(before, y[j], 0, 1, 4, 5);
        before = __builtin_shufflevector(y[j], Float4{}, 2, 3, 4, 5);
    }
}

void SynthesisFilter::processOne(float* signal, float* history) const noexcept {
    Float4 y = loadPair(signal);
    for (int k = last_; k >= 1; --k) {
        y += loadPair(history - 2 * k) * loadAligned(c_.data() + kLanes * k);
    }
    storePair(signal, y);
    storePair(history, clamped(y, kHistoryLimit));
}

} // namespace Engine
