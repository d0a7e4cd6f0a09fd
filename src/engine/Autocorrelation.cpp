#include "engine/Autocorrelation.h"

#include "engine/Simd.h"

#include <algorithm>

namespace Engine {

namespace {

// Squares `bins` pairs in place: the power, times `scale`, as real part and nothing as imaginary.
void toPower(float* spectrum, int bins, float scale) noexcept {
    const Int4 realParts = {-1, 0, -1, 0};
    for (float* pair = spectrum; pair < spectrum + 2 * bins; pair += 4) {
        const Float4 x = load(pair);
        const Float4 squares = x * x;
        const Float4 power = squares + __builtin_shufflevector(squares, squares, 1, 0, 3, 2);
        store(pair, keep(realParts, power * splat(scale)));
    }
}

} // namespace

Autocorrelation::Autocorrelation(std::span<const RateConfiguration> configurations) {
    int longest = 0;
    for (std::size_t i = 0; i < plans_.size(); ++i) {
        const int length = configurations[i].frameLength;
        plans_[i] = {length, FourierPlans::forLength(2 * length)};
        longest = std::max(longest, length);
    }
    const auto padded =
        static_cast<std::size_t>(std::max(2 * longest, 8)); // the window writes four at a time
    padded_ = AlignedFloats(padded);
    spectrum_ = AlignedFloats(padded + 4); // one bin more, and room for the vectors' last step
    lags_ = AlignedFloats(padded);
    setFrameLength(configurations[0].frameLength);
}

void Autocorrelation::setFrameLength(int length) noexcept {
    length_ = length;
    for (const Plan& plan : plans_) {
        if (plan.length == length) {
            transforms_ = plan.transforms.get();
        }
    }
    padded_.clear();
}

std::span<const float> Autocorrelation::compute() noexcept {
    transforms_->forward(padded_.data(), spectrum_.data());
    toPower(spectrum_.data(), length_ + 1, 1 / static_cast<float>(2 * length_));
    transforms_->inverse(spectrum_.data(), lags_.data());
    return lags_.span().first(static_cast<std::size_t>(length_));
}

} // namespace Engine
