// Where a command's effect keeps its preferences: the folder that the user names, or one that is gone afterwards.
#pragma once

#include <fmt/core.h>

#include <filesystem>
#include <random>
#include <string>
#include <system_error>

namespace Tool {

class PreferencesFolder {
public:
    explicit PreferencesFolder(const std::string& given = {}) : path_(given), temporary_(given.empty()) {
        std::random_device random;
        while (path_.empty() || (temporary_ && !std::filesystem::create_directories(path_))) {
            path_ = std::filesystem::temp_directory_path() / fmt::format("murmelon-bridge-{:08x}", random());
        }
    }
    ~PreferencesFolder() {
        std::error_code ignored;
        if (temporary_) {
            std::filesystem::remove_all(path_, ignored);
        }
    }
    PreferencesFolder(const PreferencesFolder&) = delete;
    PreferencesFolder& operator=(const PreferencesFolder&) = delete;

    std::filesystem::path file() const { return path_ / "preferences"; }

private:
    std::filesystem::path path_;
    bool temporary_;
};

} // namespace Tool
