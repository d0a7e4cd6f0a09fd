#include "tool/LayoutFiles.h"

#include "platform/PathText.h"
#include "tool/TextFile.h"

#include <filesystem>

namespace Tool {

std::string LayoutFiles::obtain(const std::string& name) const {
    if (name == file_ && (file_ == "-" || std::filesystem::exists(Platform::pathFromUtf8(file_)))) {
        return readTextFile(name);
    }
    if (auto resource = resources_.find(Resources::Type::quilt, name)) {
        return *std::move(resource);
    }
    return readTextFile(Platform::utf8Of(Platform::pathFromUtf8(file_).parent_path() / Platform::pathFromUtf8(name)));
}

} // namespace Tool
