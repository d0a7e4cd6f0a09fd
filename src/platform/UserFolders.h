// Where the user's own files of this product belong.
#pragma once

#include <filesystem>

namespace Platform {

// The folder for settings: on Linux "Murmelon" below $XDG_CONFIG_HOME, or below ~/.config without one. It
// need not exist. Throws std::runtime_error when the user has no home.
std::filesystem::path settingsFolder();

// The folder for what the maker's products bring along, patches above all: on Linux "Korvanta" below
// $XDG_DATA_HOME, or below ~/.local/share without one. As above.
std::filesystem::path supportFolder();

// The folder that holds the plug-in's library, or the command when it is part of that. Empty when the system
// does not tell.
std::filesystem::path binaryFolder();

} // namespace Platform
