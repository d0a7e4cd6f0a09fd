#include "engine/InputGuard.h"

#include "engine/Simd.h"

#include <algorithm>
#include <limits>

namespace Engine {

namespace {

Float4 finiteOrZero(Float4 x) noexcept {
    const Float4 size = magnitude(x);
    const Int4 normal = (size >= splat(std::numeric_limits<float>::min())) &
                        (size <= splat(std::numeric_limits<float>::max()));
    return keep(normal, x);
}

} // namespace

bool copyFinite(const float* in, float* out, int count) noexcept {
    Float4 loudest{};
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        const Float4 x = finiteOrZero(load(in + i));
        loudest = larger(loudest, magnitude(x));
        store(out + i, x);
    }
    if (i < count) {
        float rest[4] = {};
        std::copy(in + i, in + count, rest);
        const Float4 x = finiteOrZero(load(rest));
        loudest = larger(loudest, magnitude(x));
        store(out + i, x);
    }
    return laneBits(loudest > splat(kLoudestInput)) != 0;
}

void limitLoudness(float* samples, int count) noexcept {
    for (int i = 0; i < count; ++i) {
        samples[i] = std::clamp(samples[i], -kLoudestInput, kLoudestInput);
    }
}

} // namespace Engine
