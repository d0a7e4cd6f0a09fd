// A library of the system that may be missing: what needs it asks for it when it is needed, so that the
// plug-in loads without it.
#pragma once

#include <dlfcn.h>

#include <initializer_list>

namespace Platform {

class DynamicLibrary {
public:
    // The first of these names that can be loaded. It is never unloaded: such libraries leave threads and
    // handlers behind.
    DynamicLibrary(std::initializer_list<const char*> names) {
        for (const char* name : names) {
            if (!handle_) {
                handle_ = dlopen(name, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
            }
        }
    }

    explicit operator bool() const { return handle_ != nullptr; }

    // Null when the library has no such function.
    template <typename Function>
    Function* function(const char* name) const {
        return handle_ ? reinterpret_cast<Function*>(dlsym(handle_, name)) : nullptr;
    }

private:
    void* handle_ = nullptr;
};

} // namespace Platform
