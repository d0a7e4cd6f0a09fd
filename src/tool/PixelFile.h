// Writes pixels as a PNG file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace Tool {

// The pixels' bytes: red, green and blue, or those and alpha, not pre-multiplied.
enum class PixelBytes { rgb, rgba };

// Throws std::runtime_error that names the file; one that was there is then as it was.
void writePixels(const std::filesystem::path& path, int width, int height, PixelBytes format,
                 const std::vector<std::uint8_t>& bytes);

} // namespace Tool
