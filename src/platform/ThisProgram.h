// What a program can ask about itself.
#pragma once

#include <filesystem>

namespace Platform {

// Where the running program's file lies. Throws std::filesystem::filesystem_error.
std::filesystem::path pathOfThisProgram();

bool standardErrorIsTerminal();

} // namespace Platform
