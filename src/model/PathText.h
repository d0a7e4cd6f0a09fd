// File paths in texts are UTF-8, on every system. Bytes that are none (Linux has such paths) go through
// unchanged where the system's paths are bytes.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace Model {

std::string toUtf8(const std::filesystem::path& path);
std::filesystem::path pathFromUtf8(std::string_view text);

} // namespace Model
