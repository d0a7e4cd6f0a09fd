#include "platform/AtomicFileWrite.h"

#include "platform/FileSync.h"
#include "platform/PathText.h"

#include <atomic>
#include <cerrno>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <system_error>

namespace Platform {

namespace fs = std::filesystem;

namespace {

// Unlike every other name in the folder with near certainty, across processes and threads. Of the target's name
// it has the extension alone: that name may be as long as names can be.
fs::path temporaryBeside(const fs::path& path) {
    constexpr std::size_t kLongestExtension = 32;
    static std::atomic<unsigned> counter{0};
    std::random_device random;
    auto name = fs::path(".murmelon-");
    name += std::to_string(random());
    name += '-';
    name += std::to_string(++counter);
    if (const fs::path extension = path.extension(); extension.native().size() <= kLongestExtension) {
        name += extension;
    }
    return path.parent_path() / name;
}

// Where the contents go in truth: what is written to a link is meant for the file that it leads to.
fs::path behindLinks(const fs::path& path) {
    std::error_code error;
    if (!fs::is_symlink(path, error)) {
        return path;
    }
    const fs::path target = fs::canonical(path, error);
    return error ? path : target; // one that leads nowhere is replaced
}

// Pipes and devices ("/dev/stdout") take what is written to them, and must not be replaced by files.
bool isReplaceable(fs::file_type type) {
    return type == fs::file_type::regular || type == fs::file_type::directory || type == fs::file_type::not_found ||
           type == fs::file_type::none;
}

[[noreturn]] void fail(const fs::path& path, const std::string& why) {
    throw std::runtime_error("Could not write " + utf8Of(path) + ": " + why);
}

} // namespace

void atomicFileWrite(const fs::path& path, const std::function<void(const fs::path& temporary)>& write) {
    std::error_code error;
    const auto status = fs::status(path, error);
    if (!isReplaceable(status.type())) {
        write(path);
        return;
    }
    const fs::path target = behindLinks(path);
    const fs::path temporary = temporaryBeside(target);
    try {
        write(temporary);
    } catch (...) {
        fs::remove_all(temporary, error);
        throw;
    }
    if (fs::is_regular_file(status)) { // a file that is replaced keeps its permissions
        fs::permissions(temporary, status.permissions(), error);
    }
    fs::rename(temporary, target, error);
    if (error) {
        std::error_code ignored;
        fs::remove_all(temporary, ignored);
        fail(path, error.message());
    }
}

void atomicFileWrite(const fs::path& path, std::string_view contents) {
    atomicFileWrite(path, [&](const fs::path& temporary) {
        std::ofstream file(temporary, std::ios::binary);
        file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
        file.close();
        if (!file || (temporary != path && !syncFile(temporary))) {
            fail(path, std::error_code(errno, std::generic_category()).message());
        }
    });
}

} // namespace Platform
