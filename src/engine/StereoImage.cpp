#include "engine/StereoImage.h"

#include <cmath>

namespace Engine {

namespace {

constexpr float kOneSide = 0.999f; // pan beyond which there is no second channel to be wide with
constexpr float kValid = 1e-9f;    // smaller terms are rounding

float square(float x) {
    return x * x;
}

float panOf(float l, float r) {
    if (l < r) {
        return 1 - l / r;
    }
    return l > r ? r / l - 1 : 0;
}

float correlationOf(float l, float r, float s, float d) {
    const float a = square((r + l) * d) - square((l - r) * s);
    const float b = square((r + l) * s) - square((l - r) * d);
    const bool valid = a >= kValid && b >= kValid;
    if (d < s) {
        return valid ? 1 - std::sqrt(a / b) : 1;
    }
    if (d > s) {
        return valid ? std::sqrt(b / a) - 1 : -1;
    }
    return 0;
}

} // namespace

float StereoImage::width() const noexcept {
    return std::fabs(pan) > kOneSide ? 0 : 1 - correlation;
}

StereoImage stereoImage(const FrameEnergies& energies, float windowStep) noexcept {
    const float l = std::sqrt(windowStep * energies.left);
    const float r = std::sqrt(windowStep * energies.right);
    const float s = std::sqrt(windowStep * energies.sum);
    const float d = std::sqrt(windowStep * energies.difference);
    return {panOf(l, r), correlationOf(l, r, s, d)};
}

} // namespace Engine
