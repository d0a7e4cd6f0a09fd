// What is written to a file lies in memory for a while. Before the file takes another's place it has to be on the
// disk, or a power cut leaves neither.
#pragma once

#include <filesystem>

namespace Platform {

// Comes back when the file's contents are where a power cut leaves them. False when the disk failed to take
// them; files that no disk holds are always there.
bool syncFile(const std::filesystem::path& path);

} // namespace Platform
