// Patch files of a folder, as browsing and stepping through patches see them.
#pragma once

#include <filesystem>
#include <vector>

namespace Model {

// The patch files in `folder`, in the order of their names with letter case ignored; none when there is no
// such folder. Files of other kinds, hidden files and folders are left out.
std::vector<std::filesystem::path> patchFilesIn(const std::filesystem::path& folder);

// The file `step` (-1 or 1) away from `current`: from the last on to the first and back when `wrap`, else it
// stays. A file that is not in the list counts as standing before the first (step 1) or behind the last (-1).
// Empty when there are no files.
std::filesystem::path neighbour(const std::vector<std::filesystem::path>& files,
                                const std::filesystem::path& current, int step, bool wrap);

} // namespace Model
