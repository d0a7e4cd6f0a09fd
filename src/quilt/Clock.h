// The time by which autoexecs and animations go. Tests turn it by hand.
#pragma once

#include <chrono>

namespace Quilt {

class Clock {
public:
    virtual ~Clock() = default;
    virtual std::chrono::milliseconds now() const = 0; // since any moment; never goes back
};

class SteadyClock : public Clock {
public:
    std::chrono::milliseconds now() const override {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now().time_since_epoch());
    }
};

} // namespace Quilt
