// What drawing may cost, so that a document nobody has looked at comes to an end. A step is about a nanosecond: a
// pixel of plain colour. All canvases of a run share one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>

namespace Drawing {

class EffortError : public std::runtime_error {
public:
    EffortError() : std::runtime_error("Drawing limit reached") {}
};

class Effort {
public:
    static constexpr std::uint64_t kEndless = UINT64_MAX;
    static constexpr std::uint64_t kPoint = 32; // of an outline: to be made, clipped and drawn as a line
    static constexpr std::uint64_t kCell = 32;  // a pixel at an edge
    static constexpr std::size_t kMostPoints = 1U << 23; // of an outline in memory

    explicit Effort(std::uint64_t steps) : left_(steps) {}

    void spend(std::uint64_t steps) {
        if (steps > left_) {
            throw EffortError();
        }
        left_ -= left_ == kEndless ? 0 : steps;
    }

private:
    std::uint64_t left_;
};

} // namespace Drawing
