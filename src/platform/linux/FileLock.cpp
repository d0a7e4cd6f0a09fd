#include "platform/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>

namespace Platform {

namespace {

constexpr std::chrono::milliseconds kRetryInterval{5};

[[noreturn]] void fail(const char* what, const std::filesystem::path& path, int error) {
    throw std::runtime_error(std::string(what) + " " + path.string() + ": " +
                             std::error_code(error, std::generic_category()).message());
}

} // namespace

FileLock::FileLock(const std::filesystem::path& path, std::chrono::milliseconds patience) {
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0) {
        fail("Could not open", path, errno);
    }
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (flock(file, LOCK_EX | LOCK_NB) != 0) {
        const int error = errno;
        if ((error != EWOULDBLOCK && error != EINTR) || std::chrono::steady_clock::now() > deadline) {
            close(file);
            fail("Could not lock", path, error);
        }
        std::this_thread::sleep_for(kRetryInterval);
    }
    file_ = file;
}

FileLock::~FileLock() {
    close(static_cast<int>(file_));
}

} // namespace Platform
