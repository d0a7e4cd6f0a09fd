// Writes pictures as PNG files: 8-bit RGBA.
#pragma once

#include "drawing/Surface.h"

#include <filesystem>

namespace Tool {

// Throws std::runtime_error that names the file; one that was there is then as it was.
void writePicture(const std::filesystem::path& path, const Drawing::ConstSurfaceView& picture);

} // namespace Tool
