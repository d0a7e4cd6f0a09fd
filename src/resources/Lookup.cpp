#include "resources/Lookup.h"

#include "platform/FileRead.h"
#include "platform/PathText.h"

#include <array>
#include <stdexcept>
#include <system_error>

namespace Resources {

namespace fs = std::filesystem;

namespace {

constexpr std::array<std::string_view, 6> kExtensions = {".quilt", ".ovs", ".ovsfont",
                                                         ".png",   ".fxb", ".strings"};

// Relative, and never above where it starts.
bool staysBelow(const fs::path& path) {
    if (path.empty() || path.has_root_path()) {
        return false;
    }
    for (const fs::path& part : path) {
        if (part == "..") {
            return false;
        }
    }
    return true;
}

std::optional<std::string> readIfThere(const fs::path& file) {
    std::error_code error;
    if (!fs::is_regular_file(file, error)) {
        return std::nullopt;
    }
    try {
        return Platform::readFile(file);
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

} // namespace

std::optional<std::string> Lookup::find(Type type, std::string_view name) const {
    const std::string_view extension = kExtensions[static_cast<std::size_t>(type)];
    std::string_view stem = name;
    if (stem.ends_with(extension)) {
        stem.remove_suffix(extension.size());
    }
    if (const auto carried = Resources::find(type, stem)) {
        return std::string(*carried);
    }
    const fs::path relative = Platform::pathFromUtf8(stem);
    if (folder_.empty() || !staysBelow(relative)) {
        return std::nullopt;
    }
    fs::path withExtension = folder_ / relative;
    withExtension += std::string(extension);
    auto contents = readIfThere(withExtension);
    return contents ? contents : readIfThere(folder_ / relative);
}

} // namespace Resources
