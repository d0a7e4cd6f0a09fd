// The constant variables: what this program is, how it was built, where its folders are.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Bridge {

// "MODEL.NAME", "BUILD.DATE", "DIRS.PATCHES" and their like; nullopt for other names.
std::optional<std::string> constantVariable(std::string_view name);

} // namespace Bridge
