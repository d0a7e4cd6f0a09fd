// The fixed noise that the engine draws from: no two runs differ.
#pragma once

#include "engine/RateConfiguration.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace Engine {

// Evenly spread over -1..1 without its ends, shuffled: exactly uniform, of zero mean, and of the root mean
// square 1/sqrt(3) to a part in a million.
template <std::size_t Size>
constexpr std::array<float, Size> shuffledUniform(std::uint32_t seed) {
    std::array<float, Size> table{};
    for (std::size_t i = 0; i < Size; ++i) {
        table[i] = (2 * static_cast<float>(i) + 1) / static_cast<float>(Size) - 1;
    }
    for (std::size_t i = Size - 1; i > 0; --i) {
        seed = seed * 1664525 + 1013904223;
        std::swap(table[i], table[(seed >> 8) % (i + 1)]);
    }
    return table;
}

inline constexpr std::size_t kNoiseTableBits = 10;
inline constexpr auto kNoiseTable = shuffledUniform<std::size_t{1} << kNoiseTableBits>(0x6d75726d);

// What is added to each sample of a frame, left and right in turn: not even digital silence is a constant, or
// the same on both sides.
template <std::size_t Length>
constexpr std::array<float, 2 * Length> makeNoiseFloor(float level) {
    const auto left = shuffledUniform<Length>(0x6c656674);
    const auto right = shuffledUniform<Length>(0x72696768);
    std::array<float, 2 * Length> both{};
    for (std::size_t i = 0; i < Length; ++i) {
        both[2 * i] = level * left[i];
        both[2 * i + 1] = level * right[i];
    }
    return both;
}

alignas(16) inline constexpr auto kNoiseFloorTable = makeNoiseFloor<kMaxFrameLength>(1e-5f);

// Draws from the table in an order that does not repeat for long.
class NoiseGenerator {
public:
    void clear() noexcept { state_ = 0; }

    float draw() noexcept {
        state_ = std::rotl(state_ * 1453128179u - 115097135u, 1);
        return kNoiseTable[state_ >> (32 - kNoiseTableBits)];
    }

private:
    std::uint32_t state_ = 0;
};

} // namespace Engine
