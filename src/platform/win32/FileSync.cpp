#include "platform/FileSync.h"

#include <windows.h>

#include <cerrno>

namespace Platform {

bool syncFile(const std::filesystem::path& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        errno = EACCES;
        return false;
    }
    const bool there = FlushFileBuffers(file) != 0;
    CloseHandle(file);
    if (!there) {
        errno = EIO;
    }
    return there;
}

} // namespace Platform
