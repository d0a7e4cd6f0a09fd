// Files as the command reads them: bytes, unchanged, "-" being standard input.
#pragma once

#include <string>

namespace Tool {

// Throws std::runtime_error that names the file when it cannot be read.
std::string readTextFile(const std::string& name);

} // namespace Tool
