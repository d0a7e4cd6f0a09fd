#include "platform/ThisProgram.h"

#include <unistd.h>

#include <algorithm>

namespace Platform {

std::filesystem::path pathOfThisProgram() {
    return std::filesystem::read_symlink("/proc/self/exe");
}

bool standardErrorIsTerminal() {
    return isatty(STDERR_FILENO) != 0;
}

std::vector<std::string> argumentsOfThisProgram(int argc, char** argv) {
    return {argv + std::min(argc, 1), argv + argc};
}

void keepStandardStreamsUnchanged() {} // they are so

} // namespace Platform
