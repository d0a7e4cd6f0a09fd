// Writes pictures.
#pragma once

#include <filesystem>

namespace Tool {

class Canvas;

// 8-bit RGB. Throws std::runtime_error that names the file; one that was there is then as it was.
void writePng(const std::filesystem::path& path, const Canvas& canvas);

} // namespace Tool
