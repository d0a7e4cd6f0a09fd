// Where a frame's source stands between left and right, and how wide it is, from four sums of squares.
#pragma once

namespace Engine {

// Over one frame of the windowed signals.
struct FrameEnergies {
    float left = 0;
    float right = 0;
    float sum = 0;        // left plus right
    float difference = 0; // left minus right
};

struct StereoImage {
    float pan = 0;         // -1 left .. 1 right
    float correlation = 1; // 1 mono .. 0 uncorrelated .. -1 inverted

    // As shown: 0 mono .. 1 uncorrelated .. 2 inverted, and 0 for a source on one side alone.
    float width() const noexcept;
};

StereoImage stereoImage(const FrameEnergies& energies, float windowStep) noexcept;

} // namespace Engine
