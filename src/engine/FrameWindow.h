// Cuts a frame out of the input: noise floor, pre-emphasis, window, and the energies of its four views.
#pragma once

#include "engine/AlignedFloats.h"
#include "engine/StereoImage.h"

#include <span>

namespace Engine {

// The window over `length` samples, a multiple of four with zeros behind.
AlignedFloats frameWindow(int length);

// `stereo` holds the frame's pairs of left and right, oldest first; up to three pairs behind it are read and
// weighted with zero. The windowed average of left and right goes to `mid`, as many values as `window` has.
FrameEnergies windowFrame(const float* stereo, std::span<const float> window, float preEmphasis,
                          float* mid) noexcept;

} // namespace Engine
