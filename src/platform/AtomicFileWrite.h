// Writes files so that nobody ever sees half of one: beside the target, brought to the disk, then renamed over it.
#pragma once

#include <filesystem>
#include <functional>
#include <string_view>

namespace Platform {

// Replaces the file at `path` by `contents`; where the path is a link, the file that it leads to. Pipes and
// devices are written to and stay what they are. On failure throws std::runtime_error that says which file and
// why; a file that was there is then as it was, and nothing is left beside it.
void atomicFileWrite(const std::filesystem::path& path, std::string_view contents);

// The same for writers that need a path of their own: `write` is handed the path to write to, in general that of
// a temporary file, which keeps the target's extension, and reports failure by throwing. It may make a folder
// there, for a target that does not exist.
void atomicFileWrite(const std::filesystem::path& path,
                     const std::function<void(const std::filesystem::path& temporary)>& write);

} // namespace Platform
