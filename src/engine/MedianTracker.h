// A running median over the last few values of a measurement, so that one that is off does not show. While
// the ring fills it is the median of what has come; of an even number of values, the upper of the middle two.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

namespace Engine {

template <std::size_t Length>
class MedianTracker {
public:
    void clear() noexcept { *this = MedianTracker{}; }

    void push(float value) noexcept {
        ring_[next_] = value;
        next_ = (next_ + 1) % Length;
        count_ = std::min(count_ + 1, Length);
        std::array<float, Length> sorted{};
        for (std::size_t i = 0; i < count_; ++i) {
            std::size_t place = i;
            for (; place > 0 && sorted[place - 1] > ring_[i]; --place) {
                sorted[place] = sorted[place - 1];
            }
            sorted[place] = ring_[i];
        }
        median_ = sorted[count_ / 2];
    }

    bool empty() const noexcept { return count_ == 0; }

    // 0 while there is none.
    float median() const noexcept { return median_; }

private:
    std::array<float, Length> ring_{};
    std::size_t next_ = 0;
    std::size_t count_ = 0;
    float median_ = 0;
};

} // namespace Engine
