#include "engine/SynthesisFilter.h"

#include "engine/Simd.h"

#include <algorithm>

namespace Engine {

namespace {

constexpr float kHistoryLimit = 100;

} // namespace

void SynthesisFilter::clear() noexcept {
    c_ = {};
    taps_ = 0;
    history_ = {};
}

void SynthesisFilter::setCoefficients(std::span<const float> c) noexcept {
    taps_ = static_cast<int>(c.size()) - 1;
    for (std::size_t k = 1; k < static_cast<std::size_t>(kTaps); ++k) {
        store(&c_[kLanes * k], splat(k < c.size() ? c[k] : 0));
    }
}

void SynthesisFilter::process(float* signal, int count) noexcept {
    float* const start = history_.data() + 2 * kTaps;
    float* now = start;
    int left = count;
    for (; left >= 4; left -= 4, now += 8, signal += 8) {
        // Four at once as long as nothing is clamped; else the four again, one after the other.
        float attempt[8];
        std::copy_n(signal, 8, attempt);
        if (processFour(attempt, now)) {
            std::copy_n(attempt, 8, now);
            std::copy_n(attempt, 8, signal);
        } else {
            for (int i = 0; i < 8; i += 2) {
                processOne(signal + i, now + i);
            }
        }
    }
    for (; left > 0; --left, now += 2, signal += 2) {
        processOne(signal, now);
    }
    std::copy(now - 2 * kTaps, now, history_.data());
}

// The sum runs from the oldest sample to the newest, so that four samples at once and one alone round alike.
bool SynthesisFilter::processFour(float* signal, const float* history) const noexcept {
    const float* c = c_.data();
    Float4 early = load(signal);    // samples 0 and 1
    Float4 late = load(signal + 4); // samples 2 and 3
    // What lies before the four: from the last tap to k = 2 for the early two and to k = 4 for the late two.
    for (int k = taps_; k >= 2; --k) {
        const Float4 past = load(history - 2 * k);
        early += past * loadAligned(c + kLanes * k);
        late += past * loadAligned(c + kLanes * (k + 2));
    }
    const Float4 zero{};
    const Float4 c1 = loadAligned(c + kLanes);
    const Float4 before = loadPair(history - 2);
    early += before * c1;
    early += __builtin_shufflevector(zero, early, 0, 1, 4, 5) * c1;
    late += __builtin_shufflevector(before, early, 0, 1, 4, 5) * loadAligned(c + 3 * kLanes);
    late += early * loadAligned(c + 2 * kLanes);
    late += __builtin_shufflevector(early, zero, 2, 3, 4, 5) * c1;
    late += __builtin_shufflevector(zero, late, 0, 1, 4, 5) * c1;
    store(signal, early);
    store(signal + 4, late);
    const Float4 limit = splat(kHistoryLimit);
    return laneBits((magnitude(early) <= limit) & (magnitude(late) <= limit)) == 0xf;
}

void SynthesisFilter::processOne(float* signal, float* history) const noexcept {
    Float4 y = loadPair(signal);
    for (int k = taps_; k >= 1; --k) {
        y += loadPair(history - 2 * k) * loadAligned(c_.data() + kLanes * k);
    }
    storePair(signal, y);
    storePair(history, clamped(y, kHistoryLimit));
}

} // namespace Engine
