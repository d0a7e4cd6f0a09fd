// A lock that programs share by a file's name.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>

namespace Platform {

// Held between processes and between threads alike: each holder opens the file for itself. The system
// releases it when a holder dies. The file stays, for removing it would let two programs lock different
// files.
class FileLock {
public:
    // Throws std::runtime_error when the file cannot be opened, or is held for longer than `patience`.
    FileLock(const std::filesystem::path& path, std::chrono::milliseconds patience);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    std::intptr_t file_;
};

} // namespace Platform
