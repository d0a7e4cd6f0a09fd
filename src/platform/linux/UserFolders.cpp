#include "platform/UserFolders.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

namespace Platform {

namespace {

constexpr const char* kProduct = "Murmelon";

// Relative paths in these variables are invalid and to be ignored.
std::filesystem::path absoluteFrom(const char* variable) {
    const char* const value = std::getenv(variable);
    std::filesystem::path path = value ? value : "";
    return path.is_absolute() ? path : std::filesystem::path();
}

std::filesystem::path homeFolder() {
    if (auto home = absoluteFrom("HOME"); !home.empty()) {
        return home;
    }
    passwd entry{};
    passwd* found = nullptr;
    std::array<char, 4096> buffer;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found && *found->pw_dir) {
        return found->pw_dir;
    }
    throw std::runtime_error("The user has no home folder");
}

} // namespace

std::filesystem::path settingsFolder() {
    const auto configured = absoluteFrom("XDG_CONFIG_HOME");
    return (configured.empty() ? homeFolder() / ".config" : configured) / kProduct;
}

} // namespace Platform
