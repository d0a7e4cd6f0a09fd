#include "model/PatchMenu.h"

#include "model/PathText.h"
#include "model/Product.h"

#include <algorithm>

namespace Model::PatchMenu {

namespace {

std::string caption(const std::filesystem::path& file) {
    std::string text;
    for (const char c : toUtf8(file.stem())) {
        text.append(c == '&' ? 2 : 1, c);
    }
    return text;
}

} // namespace

std::vector<MenuItem> items(const std::vector<std::filesystem::path>& files, Folder folder,
                            const Translate& translate) {
    std::vector<MenuItem> result = {{translate("Browse Patches..."), kBrowse}};
    if (folder == Folder::user) {
        result.push_back({translate("Go to Factory Patches"), kGoToFactoryPatches});
    } else {
        result.push_back({translate("Go to User Patches"), kGoToUserPatches});
    }
    for (std::size_t i = 0; i < std::min(files.size(), kMostFiles); ++i) {
        result.push_back({caption(files[i]), kFirstFile + static_cast<int>(i)});
    }
    if (files.size() > kMostFiles) {
        result.push_back({translate("Too many patches..."), 0, false});
    }
    if (files.empty()) {
        result.push_back({translate("No patches found"), 0, false});
    }
    return result;
}

std::optional<std::size_t> fileIndex(int command, std::size_t fileCount) {
    const auto listed = static_cast<int>(std::min(fileCount, kMostFiles));
    if (command < kFirstFile || command >= kFirstFile + listed) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(command - kFirstFile);
}

std::string folderName(Folder folder) {
    return std::string(kProductName) + (folder == Folder::user ? " User Patches" : " Patches");
}

} // namespace Model::PatchMenu
