// Names that texts, files and stored entries of this product are known by. They never change between
// compatible versions.
#pragma once

#include <string_view>

namespace Model {

inline constexpr std::string_view kProductName = "Murmelon";

// Top keys of texts, and the names of stored entries.
inline constexpr std::string_view kPatchKey = "MurmelonPatch";
inline constexpr std::string_view kMidiConfigKey = "MurmelonMidiConfig";
inline constexpr std::string_view kMidiConfigEntry = "MidiConfig"; // of the preferences

// Extensions of files.
inline constexpr std::string_view kPatchExtension = ".kvmp";
inline constexpr std::string_view kMidiConfigExtension = ".kvmc";

} // namespace Model
