#include "platform/LoadedLibrary.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

namespace Platform {

const char* const LoadedLibrary::kExtension = ".so";

// An absolute path, or the system would look in its own folders.
LoadedLibrary::LoadedLibrary(const std::filesystem::path& path)
    : handle_(dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (!handle_) {
        const char* const why = dlerror();
        throw std::runtime_error(std::string("Could not load ") + (why ? why : path.c_str()));
    }
}

LoadedLibrary::~LoadedLibrary() {
    dlclose(handle_);
}

void* LoadedLibrary::symbol(const char* name) const {
    return dlsym(handle_, name);
}

} // namespace Platform
