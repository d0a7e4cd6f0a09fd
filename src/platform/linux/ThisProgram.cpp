#include "platform/ThisProgram.h"

#include <unistd.h>

namespace Platform {

std::filesystem::path pathOfThisProgram() {
    return std::filesystem::read_symlink("/proc/self/exe");
}

bool standardErrorIsTerminal() {
    return isatty(STDERR_FILENO) != 0;
}

} // namespace Platform
