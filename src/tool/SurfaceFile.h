// Writes what has been drawn as PNG: 8-bit RGBA, not pre-multiplied.
#pragma once

#include "drawing/Surface.h"

#include <filesystem>

namespace Tool {

// Throws std::runtime_error that names the file.
void writeSurface(const std::filesystem::path& path, const Drawing::ConstSurfaceView& picture);

} // namespace Tool
