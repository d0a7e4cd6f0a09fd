// File paths in texts are UTF-8, on every system. Bytes that are none (Linux has such paths) go through unchanged
// where the system's paths are bytes; elsewhere what cannot be told stands as a replacement character.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace Platform {

std::string utf8Of(const std::filesystem::path& path);
std::filesystem::path pathFromUtf8(std::string_view text);

} // namespace Platform
