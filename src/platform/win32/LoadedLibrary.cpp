#include "platform/LoadedLibrary.h"

#include "platform/win32/SystemText.h"

#include <windows.h>

#include <stdexcept>

namespace Platform {

const char* const LoadedLibrary::kExtension = ".dll";

// An absolute path, or the system would look in its own folders. What the library needs may lie beside it.
LoadedLibrary::LoadedLibrary(const std::filesystem::path& path)
    : handle_(
          LoadLibraryExW(std::filesystem::absolute(path).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {
    if (!handle_) {
        const DWORD error = GetLastError();
        throw std::runtime_error("Could not load " + toUtf8(path.native()) + ": " + systemWords(error));
    }
}

LoadedLibrary::~LoadedLibrary() {
    FreeLibrary(static_cast<HMODULE>(handle_));
}

void* LoadedLibrary::symbol(const char* name) const {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

} // namespace Platform
