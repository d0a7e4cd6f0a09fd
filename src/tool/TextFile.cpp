#include "tool/TextFile.h"

#include <cerrno>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace Tool {

std::string readTextFile(const std::string& name) {
    if (name == "-") {
        return {std::istreambuf_iterator<char>(std::cin), {}};
    }
    std::ifstream file(name, std::ios::binary);
    std::string text;
    if (file) {
        text.assign(std::istreambuf_iterator<char>(file), {});
    }
    if (!file || file.bad()) {
        throw std::runtime_error("Could not read " + name + ": " +
                                 std::error_code(errno, std::generic_category()).message());
    }
    return text;
}

std::string sourceName(const std::string& name) {
    return name == "-" ? std::string() : name;
}

} // namespace Tool
