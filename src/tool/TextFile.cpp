#include "tool/TextFile.h"

#include "platform/FileRead.h"

#include <iostream>

namespace Tool {

std::string readTextFile(const std::string& name) {
    if (name == "-") {
        return Platform::readAll(std::cin);
    }
    return Platform::readFile(name);
}

std::string sourceName(const std::string& name) {
    return name == "-" ? std::string() : name;
}

} // namespace Tool
