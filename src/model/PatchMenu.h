// What the pop-up menu for browsing patches holds; showing it is the editor's business.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Model {

struct MenuItem {
    std::string caption; // with "&&" for every "&" that is to be seen
    int command = 0;
    bool enabled = true;

    bool operator==(const MenuItem&) const = default;
};

namespace PatchMenu {

inline constexpr int kBrowse = 100;
inline constexpr int kGoToFactoryPatches = 101;
inline constexpr int kGoToUserPatches = 102;
inline constexpr int kFirstFile = 1000; // and one more for each file
inline constexpr std::size_t kMostFiles = 500;

enum class Folder { factory, user, other };

using Translate = std::function<std::string(std::string_view)>;

// From the user's folder the menu leads to the factory's, from there and from anywhere else to the user's.
std::vector<MenuItem> items(const std::vector<std::filesystem::path>& files, Folder folder,
                            const Translate& translate);

// The file that a chosen command opens; nullopt when it is another command.
std::optional<std::size_t> fileIndex(int command, std::size_t fileCount);

// "Murmelon Patches" or "Murmelon User Patches".
std::string folderName(Folder folder);

} // namespace PatchMenu

} // namespace Model
