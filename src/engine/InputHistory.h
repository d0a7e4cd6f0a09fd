// The newest samples of the internal input, straight in memory, so that a frame is one run of pairs.
#pragma once

#include "engine/AlignedFloats.h"

#include <algorithm>

namespace Engine {

class InputHistory {
public:
    // [main] Room for frames of up to `longest` samples and additions of up to `mostAdded`.
    InputHistory(int longest, int mostAdded)
        : longest_(longest), mostAdded_(mostAdded),
          pairs_(2 * static_cast<std::size_t>(longest + std::max(kStretch, mostAdded) + kRoom)),
          end_(longest) {}

    void clear() noexcept {
        pairs_.clear();
        end_ = longest_;
    }

    // Where the next `count` pairs of left and right are to be written; three more may be spoiled behind
    // them.
    float* add(int count) noexcept {
        if (end_ + count > longest_ + std::max(kStretch, mostAdded_)) {
            float* const front = pairs_.data();
            std::copy(front + 2 * (end_ - longest_), front + 2 * end_, front);
            end_ = longest_;
        }
        float* const place = pairs_.data() + 2 * end_;
        end_ += count;
        return place;
    }

    // The `length` pairs that end `newer` samples before the newest. Three more may be read behind them.
    const float* frame(int length, int newer) const noexcept {
        return pairs_.data() + 2 * (end_ - newer - length);
    }

private:
    static constexpr int kStretch = 4096; // samples between two moves to the front
    static constexpr int kRoom = 4;

    int longest_;
    int mostAdded_;
    AlignedFloats pairs_;
    int end_;
};

} // namespace Engine
