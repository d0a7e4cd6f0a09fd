// What the engine tells the other threads: the eight analysis values and the current synthesis filter. The
// audio thread is the only writer; anyone may read at any time without waiting or stopping it.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>

namespace Engine {

// Coefficients 0..order-1 of the all-pole synthesis filter y[n] = x[n] + sum of c[k] y[n-k], k = 1..order-1.
struct FilterSnapshot {
    static constexpr int kMaxOrder = 64;
    int order = 0; // 0: there is no filter yet
    std::array<float, kMaxOrder> coefficients{};
};

class Feedbacks {
public:
    std::atomic<float> sampleRate{0}; // internal rate, Hz
    std::atomic<float> pitch{0};      // octaves relative to C3 (MIDI note 60)
    std::atomic<float> frequency{0};  // detected pitch as angular frequency, 0..pi
    std::atomic<float> amplitude{0};  // residual amplitude, linear
    std::atomic<float> volume{0};     // the same in dB
    std::atomic<float> unvoiced{0};   // 0..1
    std::atomic<float> pan{0};        // -1 left .. 1 right
    std::atomic<float> width{0};      // 0 mono .. 1 uncorrelated .. 2 inverted

    // [audio]
    void publishFilter(const FilterSnapshot& filter) noexcept;

    // [any] A consistent copy of the filter published last.
    FilterSnapshot filter() const noexcept;

private:
    // A sequence counter guards words that are atomics themselves, so that a reader which meets the writer
    // sees the counter change and reads again, without a data race.
    std::atomic<std::uint32_t> sequence_{0};
    std::atomic<int> order_{0};
    std::array<std::atomic<float>, FilterSnapshot::kMaxOrder> coefficients_{};
};

// Linear power response, not negative, of the filter at the angular frequency `w` (clamped to 0..pi). nullopt
// while there is no filter.
std::optional<double> powerResponse(const FilterSnapshot& filter, double w);

} // namespace Engine
