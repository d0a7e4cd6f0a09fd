// Reads whole files.
#pragma once

#include <filesystem>
#include <string>

namespace Platform {

// The bytes of the file, unchanged. Throws std::runtime_error that says which file could not be read, and
// why.
std::string readFile(const std::filesystem::path& path);

} // namespace Platform
