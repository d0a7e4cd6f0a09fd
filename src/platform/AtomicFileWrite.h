// Writes files so that nobody ever sees half of one: beside the target, flushed, then renamed over it.
#pragma once

#include <filesystem>
#include <string_view>

namespace Platform {

// Replaces the file at `path` by `contents`; where the path is a link, the file that it leads to. Pipes and
// devices are written to and stay what they are. On failure throws std::runtime_error that says which file and
// why; a file that was there is then as it was, and nothing is left beside it.
void atomicFileWrite(const std::filesystem::path& path, std::string_view contents);

} // namespace Platform
