// A shared library loaded at run time.
#pragma once

#include <filesystem>

namespace Platform {

class LoadedLibrary {
public:
    static const char* const kExtension; // ".so"

    // Throws std::runtime_error with the system's words when it cannot be loaded.
    explicit LoadedLibrary(const std::filesystem::path& path);
    ~LoadedLibrary();
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

    // A function that the library exports; null: there is none of this name.
    template <typename Function>
    Function* function(const char* name) const {
        return reinterpret_cast<Function*>(symbol(name));
    }

private:
    void* symbol(const char* name) const;

    void* handle_;
};

} // namespace Platform
