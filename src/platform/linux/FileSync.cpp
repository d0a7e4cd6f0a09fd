#include "platform/FileSync.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace Platform {

bool syncFile(const std::filesystem::path& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    const bool there = fdatasync(file) == 0 || errno == EINVAL || errno == ENOSYS;
    const int error = errno;
    close(file);
    errno = error;
    return there;
}

} // namespace Platform
