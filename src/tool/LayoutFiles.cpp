#include "tool/LayoutFiles.h"

#include "tool/TextFile.h"

#include <filesystem>

namespace Tool {

std::string LayoutFiles::obtain(const std::string& name) const {
    if (name == file_ && (file_ == "-" || std::filesystem::exists(file_))) {
        return readTextFile(name);
    }
    if (auto resource = resources_.find(Resources::Type::quilt, name)) {
        return *std::move(resource);
    }
    return readTextFile((std::filesystem::path(file_).parent_path() / name).string());
}

} // namespace Tool
