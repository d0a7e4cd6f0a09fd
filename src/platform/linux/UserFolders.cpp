#include "platform/UserFolders.h"

#include <dlfcn.h>
#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace Platform {

namespace {

constexpr const char* kProduct = "Murmelon";
constexpr const char* kMaker = "Korvanta";

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

std::filesystem::path supportFolder() {
    const auto configured = absoluteFrom("XDG_DATA_HOME");
    return (configured.empty() ? homeFolder() / ".local" / "share" : configured) / kMaker;
}

std::filesystem::path binaryFolder() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&binaryFolder), &info) == 0 || !info.dli_fname) {
        return {};
    }
    std::filesystem::path file = info.dli_fname;
    std::error_code error;
    if (!file.is_absolute()) { // of a program this is what it was called by
        file = std::filesystem::read_symlink("/proc/self/exe", error);
    }
    return file.parent_path();
}

} // namespace Platform
