#include "platform/SharedFile.h"

#include "platform/AtomicFileWrite.h"
#include "platform/FileRead.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

namespace Platform {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::milliseconds kRetryInterval{5};

fs::path withSuffix(fs::path path, const char* suffix) {
    return path += suffix;
}

[[noreturn]] void fail(const std::string& what, const fs::path& path, int error) {
    throw std::runtime_error(what + " " + path.string() + ": " +
                             std::error_code(error, std::generic_category()).message());
}

// Held between processes and between threads alike: each holder opens the file for itself. The system
// releases it when a holder dies. The file stays, for removing it would let two programs lock different
// files.
class FileLock {
public:
    FileLock(const fs::path& path, std::chrono::milliseconds patience)
        : descriptor_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
        if (descriptor_ < 0) {
            fail("Could not open", path, errno);
        }
        const auto deadline = std::chrono::steady_clock::now() + patience;
        while (flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
            const int error = errno;
            if ((error != EWOULDBLOCK && error != EINTR) || std::chrono::steady_clock::now() > deadline) {
                close(descriptor_);
                fail("Could not lock", path, error);
            }
            std::this_thread::sleep_for(kRetryInterval);
        }
    }
    ~FileLock() { close(descriptor_); }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    int descriptor_;
};

} // namespace

SharedFile::SharedFile(fs::path file, std::chrono::milliseconds patience)
    : file_(std::move(file)), patience_(patience) {}

std::string SharedFile::read() const {
    std::error_code error;
    return fs::exists(file_, error) ? readFile(file_) : std::string();
}

void SharedFile::update(const std::function<Replacement(const std::string& contents)>& change) {
    std::error_code error;
    fs::create_directories(file_.parent_path(), error);
    const FileLock lock(withSuffix(file_, ".lock"), patience_);
    const Replacement next = change(read());
    if (next.setAside) {
        fs::rename(file_, withSuffix(file_, ".damaged"));
    }
    atomicFileWrite(file_, next.contents);
}

} // namespace Platform
