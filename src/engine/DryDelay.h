// One channel of the dry path: keeps what came in and gives it back later.
#pragma once

#include "engine/AlignedFloats.h"

namespace Engine {

class DryDelay {
public:
    DryDelay() = default;

    // [main] For delays of up to `longest` samples and blocks of up to `mostAtOnce`.
    DryDelay(int longest, int mostAtOnce);

    void clear() noexcept;

    void write(const float* in, int count) noexcept;

    // The `count` samples written last, as they were `delay` samples before.
    void read(int delay, float* out, int count) const noexcept;

private:
    AlignedFloats ring_;
    std::size_t next_ = 0; // where the next sample goes
};

} // namespace Engine
