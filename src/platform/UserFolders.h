// Where the user's own files of this product belong.
#pragma once

#include <filesystem>

namespace Platform {

// The folder for settings: on Linux "Murmelon" below $XDG_CONFIG_HOME, or below ~/.config without one. It
// need not exist. Throws std::runtime_error when the user has no home.
std::filesystem::path settingsFolder();

} // namespace Platform
