#include "platform/FileLock.h"

#include "platform/win32/SystemText.h"

#include <windows.h>

#include <stdexcept>
#include <thread>

namespace Platform {

// Opened for this holder alone.
FileLock::FileLock(const std::filesystem::path& path, std::chrono::milliseconds patience) {
    constexpr std::chrono::milliseconds kRetryInterval{5};
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (true) {
        const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                                        FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file != INVALID_HANDLE_VALUE) {
            file_ = reinterpret_cast<std::intptr_t>(file);
            return;
        }
        const DWORD error = GetLastError();
        if (error != ERROR_SHARING_VIOLATION || std::chrono::steady_clock::now() > deadline) {
            throw std::runtime_error("Could not lock " + toUtf8(path.native()) + ": " + systemWords(error));
        }
        std::this_thread::sleep_for(kRetryInterval);
    }
}

FileLock::~FileLock() {
    CloseHandle(reinterpret_cast<HANDLE>(file_));
}

} // namespace Platform
