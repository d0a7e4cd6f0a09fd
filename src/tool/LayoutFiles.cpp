#include "tool/LayoutFiles.h"

#include "resources/Resources.h"
#include "tool/TextFile.h"

#include <filesystem>

namespace Tool {

std::string LayoutFiles::obtain(const std::string& name) const {
    if (name == file_ && (file_ == "-" || std::filesystem::exists(file_))) {
        return readTextFile(name);
    }
    if (const auto resource = Resources::find(Resources::Type::quilt, name)) {
        return std::string(*resource);
    }
    return readTextFile((std::filesystem::path(file_).parent_path() / name).string());
}

} // namespace Tool
