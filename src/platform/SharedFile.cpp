#include "platform/SharedFile.h"

#include "platform/AtomicFileWrite.h"
#include "platform/FileLock.h"
#include "platform/FileRead.h"

#include <system_error>
#include <utility>

namespace Platform {

namespace fs = std::filesystem;

namespace {

fs::path withSuffix(fs::path path, const char* suffix) {
    return path += suffix;
}

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
