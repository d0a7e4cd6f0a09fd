#include "engine/FrameWindow.h"

#include "engine/NoiseTables.h"
#include "engine/RateConfiguration.h"
#include "engine/Simd.h"

#include <cmath>
#include <numbers>

namespace Engine {

namespace {

constexpr double kWindowScale = 1.9074796; // the window's mean square is 1
// output = input - low-pass, two pairs of left and right at a time.
class PreEmphasis {
public:
    explicit PreEmphasis(float coefficient) noexcept
        : c_(splat(coefficient)),
          q_(splat(1 - coefficient)), powers_{q_[0], q_[0], q_[0] * q_[0], q_[0] * q_[0]} {}

    Float4 next(Float4 x) noexcept {
        const Float4 step = c_ * x;
        const Float4 earlier = __builtin_shufflevector(step, Float4{}, 4, 4, 0, 1);
        const Float4 lowPass = step + earlier * q_ + carry_ * powers_;
        carry_ = __builtin_shufflevector(lowPass, lowPass, 2, 3, 2, 3);
        return x - lowPass;
    }

private:
    Float4 c_;
    Float4 q_;
    Float4 powers_;
    Float4 carry_{}; // the low-pass after the pair before, twice
};

} // namespace

AlignedFloats frameWindow(int length) {
    AlignedFloats window((static_cast<std::size_t>(length) + 3) / 4 * 4);
    for (int i = 0; i < length; ++i) {
        const double t = static_cast<double>(i) / length;
        const double s = std::sin(std::numbers::pi * t * t);
        window[static_cast<std::size_t>(i)] = static_cast<float>(kWindowScale * s * s);
    }
    return window;
}

FrameEnergies windowFrame(const float* stereo, std::span<const float> window, float preEmphasis,
                          float* mid) noexcept {
    PreEmphasis emphasis(preEmphasis);
    Float4 leftEnergy{};
    Float4 rightEnergy{};
    Float4 sumEnergy{};
    Float4 differenceEnergy{};
    const float* noise = kNoiseFloorTable.data();
    for (std::size_t i = 0; i < window.size(); i += 4) {
        const Float4 first = emphasis.next(load(stereo + 2 * i) + loadAligned(noise + 2 * i));
        const Float4 second = emphasis.next(load(stereo + 2 * i + 4) + loadAligned(noise + 2 * i + 4));
        const Float4 weight = loadAligned(window.data() + i);
        const Float4 left = weight * __builtin_shufflevector(first, second, 0, 2, 4, 6);
        const Float4 right = weight * __builtin_shufflevector(first, second, 1, 3, 5, 7);
        const Float4 sum = left + right;
        const Float4 difference = left - right;
        leftEnergy += left * left;
        rightEnergy += right * right;
        sumEnergy += sum * sum;
        differenceEnergy += difference * difference;
        store(mid + i, sum * splat(0.5f));
    }
    return {sumOfLanes(leftEnergy), sumOfLanes(rightEnergy), sumOfLanes(sumEnergy),
            sumOfLanes(differenceEnergy)};
}

} // namespace Engine
