#include "tool/TextFile.h"

#include "platform/FileRead.h"
#include "platform/PathText.h"

#include <iostream>

namespace Tool {

std::string readTextFile(const std::string& name) {
    if (name == "-") {
        return Platform::readAll(std::cin);
    }
    return Platform::readFile(Platform::pathFromUtf8(name));
}

std::string sourceName(const std::string& name) {
    return name == "-" ? std::string() : name;
}

} // namespace Tool
