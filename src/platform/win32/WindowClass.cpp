#include "platform/win32/WindowClass.h"

#include "platform/win32/SystemText.h"

#include <cstdint>
#include <mutex>
#include <stdexcept>

namespace Platform {

namespace {

std::mutex mutex;
int users = 0; // guarded by mutex

} // namespace

WindowClass::WindowClass(WNDPROC procedure)
    : name_(L"Murmelon-" + std::to_wstring(reinterpret_cast<std::uintptr_t>(thisModule()))) {
    const std::lock_guard lock(mutex);
    if (users == 0) {
        WNDCLASSEXW description{};
        description.cbSize = sizeof description;
        description.lpfnWndProc = procedure;
        description.hInstance = static_cast<HINSTANCE>(thisModule());
        description.lpszClassName = name_.c_str();
        if (!RegisterClassExW(&description)) {
            throw std::runtime_error("The system refused a kind of window: " + systemWords(GetLastError()));
        }
    }
    ++users;
}

WindowClass::~WindowClass() {
    const std::lock_guard lock(mutex);
    if (--users == 0) {
        UnregisterClassW(name_.c_str(), static_cast<HINSTANCE>(thisModule()));
    }
}

} // namespace Platform
