// Reads whole files.
#pragma once

#include <filesystem>
#include <istream>
#include <string>

namespace Platform {

// The bytes of the file, unchanged. Throws std::runtime_error that says which file could not be read, and
// why.
std::string readFile(const std::filesystem::path& path);

// What is left of the stream. `sizeHint` bytes are read at once; more may follow, or fewer.
std::string readAll(std::istream& stream, std::size_t sizeHint = 0);

} // namespace Platform
