// What the binary carries within it: layouts, images, fonts, the string table, the factory bank. The files
// are those of resources/; its CMakeLists.txt says how one gets in. Bytes live as long as the program.
//
// A name is found in any case, as "diode_X2" or "DIODE_X2", within one type.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace Resources {

enum class Type { quilt, ovs, ovsfont, png, fxb, strings };

struct Resource {
    Type type;
    std::string_view name;
    std::string_view bytes;
};

std::optional<std::string_view> find(Type type, std::string_view name);

// In the order of their files' names.
std::vector<Resource> all();

} // namespace Resources
