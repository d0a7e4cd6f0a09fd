#include "platform/ThisProgram.h"

#include <dlfcn.h>
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

void keepThisLibrary() noexcept {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&keepThisLibrary), &info) != 0) {
        dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
    }
}

} // namespace Platform
