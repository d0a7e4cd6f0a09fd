#include "tool/TextFile.h"

#include "platform/FileRead.h"
#include "platform/PathText.h"

#include <cerrno>
#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <system_error>

namespace Tool {

std::string readTextFile(const std::string& name) {
    if (name == "-") {
        std::string text = Platform::readAll(std::cin);
        if (std::ferror(stdin) != 0) { // a folder, say
            throw std::runtime_error("Could not read standard input: " +
                                     std::error_code(errno, std::generic_category()).message());
        }
        return text;
    }
    return Platform::readFile(Platform::pathFromUtf8(name));
}

std::string sourceName(const std::string& name) {
    return name == "-" ? std::string() : name;
}

} // namespace Tool
