#include "platform/AtomicFileWrite.h"

#include <atomic>
#include <cerrno>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <system_error>

namespace Platform {

namespace {

// Unlike every other name in the folder with near certainty, across processes and threads.
std::filesystem::path temporaryBeside(const std::filesystem::path& path) {
    static std::atomic<unsigned> counter{0};
    std::random_device random;
    auto name = std::filesystem::path(".");
    name += path.stem();
    name += '.';
    name += std::to_string(random());
    name += '-';
    name += std::to_string(++counter);
    name += path.extension();
    return path.parent_path() / name;
}

[[noreturn]] void fail(const std::filesystem::path& path, const std::string& why) {
    throw std::runtime_error("Could not write " + path.string() + ": " + why);
}

} // namespace

void atomicFileWrite(const std::filesystem::path& path,
                     const std::function<void(const std::filesystem::path& temporary)>& write) {
    const auto temporary = temporaryBeside(path);
    std::error_code error;
    try {
        write(temporary);
    } catch (...) {
        std::filesystem::remove_all(temporary, error);
        throw;
    }
    // A file that is replaced keeps its permissions.
    const auto status = std::filesystem::status(path, error);
    if (!error && std::filesystem::is_regular_file(status)) {
        std::filesystem::permissions(temporary, status.permissions(), error);
    }
    std::filesystem::rename(temporary, path, error);
    if (error) {
        std::error_code ignored;
        std::filesystem::remove_all(temporary, ignored);
        fail(path, error.message());
    }
}

void atomicFileWrite(const std::filesystem::path& path, std::string_view contents) {
    atomicFileWrite(path, [&](const std::filesystem::path& temporary) {
        std::ofstream file(temporary, std::ios::binary);
        file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
        file.close();
        if (!file) {
            fail(path, std::error_code(errno, std::generic_category()).message());
        }
    });
}

} // namespace Platform
