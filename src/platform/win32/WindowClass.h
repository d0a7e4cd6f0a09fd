// The window class of this module's windows. It goes with the last of them, for a library that is loaded anew
// lies elsewhere, and a class left behind would lead the system to where its code was.
#pragma once

#include <windows.h>

#include <string>

namespace Platform {

class WindowClass {
public:
    // All of a module have the same procedure. Throws std::runtime_error.
    explicit WindowClass(WNDPROC procedure);
    ~WindowClass();
    WindowClass(const WindowClass&) = delete;
    WindowClass& operator=(const WindowClass&) = delete;

    const wchar_t* name() const { return name_.c_str(); }

private:
    std::wstring name_;
};

} // namespace Platform
