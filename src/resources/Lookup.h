// Resources by name: those that the binary carries first, then the files of a folder, for people who work on
// layouts and images. A file has its type's extension, "diode_X2" as an image is diode_X2.png, or is named in
// full.
#pragma once

#include "resources/Resources.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace Resources {

class Lookup {
public:
    Lookup() = default; // no folder
    explicit Lookup(std::filesystem::path folder) : folder_(std::move(folder)) {}

    // Only files below the folder are found.
    std::optional<std::string> find(Type type, std::string_view name) const;

private:
    std::filesystem::path folder_;
};

} // namespace Resources
