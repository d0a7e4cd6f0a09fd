#include "engine/DryDelay.h"

#include <algorithm>
#include <bit>

namespace Engine {

DryDelay::DryDelay(int longest, int mostAtOnce)
    : ring_(std::bit_ceil(static_cast<std::size_t>(longest) + static_cast<std::size_t>(mostAtOnce))) {}

void DryDelay::clear() noexcept {
    ring_.clear();
    next_ = 0;
}

void DryDelay::write(const float* in, int count) noexcept {
    const auto size = static_cast<std::size_t>(count);
    const std::size_t first = std::min(size, ring_.size() - next_);
    std::copy_n(in, first, ring_.data() + next_);
    std::copy_n(in + first, size - first, ring_.data());
    next_ = (next_ + size) & (ring_.size() - 1);
}

void DryDelay::read(int delay, float* out, int count) const noexcept {
    const auto size = static_cast<std::size_t>(count);
    const std::size_t start = (next_ - size - static_cast<std::size_t>(delay)) & (ring_.size() - 1);
    const std::size_t first = std::min(size, ring_.size() - start);
    std::copy_n(ring_.data() + start, first, out);
    std::copy_n(ring_.data(), size - first, out + first);
}

} // namespace Engine
