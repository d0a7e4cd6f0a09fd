#include "engine/Feedbacks.h"

#include <algorithm>
#include <complex>
#include <numbers>

namespace Engine {

void Feedbacks::publishFilter(const FilterSnapshot& filter) noexcept {
    sequence_.fetch_add(1, std::memory_order_acq_rel); // odd: being written
    order_.store(filter.order, std::memory_order_release);
    for (std::size_t k = 0; k < coefficients_.size(); ++k) {
        coefficients_[k].store(filter.coefficients[k], std::memory_order_release);
    }
    sequence_.fetch_add(1, std::memory_order_release);
}

FilterSnapshot Feedbacks::filter() const noexcept {
    FilterSnapshot result;
    std::uint32_t before = 0;
    std::uint32_t after = 0;
    do {
        before = sequence_.load(std::memory_order_acquire);
        result.order = order_.load(std::memory_order_acquire);
        for (std::size_t k = 0; k < coefficients_.size(); ++k) {
            result.coefficients[k] = coefficients_[k].load(std::memory_order_acquire);
        }
        after = sequence_.load(std::memory_order_acquire);
    } while (before != after || before % 2 != 0);
    return result;
}

std::optional<double> powerResponse(const FilterSnapshot& filter, double w) {
    if (filter.order == 0) {
        return std::nullopt;
    }
    w = w > 0 ? std::min(w, std::numbers::pi) : 0;
    std::complex<double> denominator = 1;
    for (int k = 1; k < filter.order; ++k) {
        denominator -=
            static_cast<double>(filter.coefficients[static_cast<std::size_t>(k)]) * std::polar(1.0, -w * k);
    }
    return 1.0 / std::max(std::norm(denominator), 1e-30);
}

} // namespace Engine
