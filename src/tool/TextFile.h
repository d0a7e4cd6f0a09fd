// Files as the command reads them: bytes, unchanged, "-" being standard input.
#pragma once

#include <string>

namespace Tool {

// Throws std::runtime_error that names the file when it cannot be read.
std::string readTextFile(const std::string& name);

// What messages call the text: the file as it was given, nothing for standard input.
std::string sourceName(const std::string& name);

} // namespace Tool
