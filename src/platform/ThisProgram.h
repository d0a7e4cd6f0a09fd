// What a program or library can ask about itself.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace Platform {

// Where the running program's file lies. Throws std::filesystem::filesystem_error.
std::filesystem::path pathOfThisProgram();

bool standardErrorIsTerminal();

// What follows the program's name on the command line, in UTF-8 wherever the system knows the characters.
std::vector<std::string> argumentsOfThisProgram(int argc, char** argv);

// From here on the standard streams carry bytes as they are: no line end is translated.
void keepStandardStreamsUnchanged();

// The library that calls this stays in memory until the program ends, even if all who have loaded it let go.
void keepThisLibrary() noexcept;

} // namespace Platform
