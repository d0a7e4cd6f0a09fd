// The linear autocorrelation of a frame, by way of its power spectrum.
#pragma once

#include "engine/AlignedFloats.h"
#include "engine/FourierPlans.h"
#include "engine/RateConfiguration.h"

#include <array>
#include <memory>
#include <span>

namespace Engine {

class Autocorrelation {
public:
    // [main] Makes the plans for the frame lengths of all configurations.
    explicit Autocorrelation(std::span<const RateConfiguration> configurations);

    // Chooses the length of the frames to come.
    void setFrameLength(int length) noexcept;

    // Where a frame of that length is to be written.
    std::span<float> frame() noexcept { return padded_.span().first(static_cast<std::size_t>(length_)); }

    // The lags 0..length-1 of what stands in `frame`, valid until the next call.
    std::span<const float> compute() noexcept;

private:
    struct Plan {
        int length = 0;
        std::shared_ptr<const FourierPlans> transforms;
    };
    std::array<Plan, kRateSteps> plans_;
    const FourierPlans* transforms_ = nullptr;
    int length_ = 0;
    AlignedFloats padded_; // the frame and as many zeros: the correlation does not wrap around
    AlignedFloats spectrum_;
    AlignedFloats lags_;
};

} // namespace Engine
