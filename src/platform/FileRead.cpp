#include "platform/FileRead.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace Platform {

std::string readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::string contents;
    std::array<char, 65536> buffer;
    while (file) {
        file.read(buffer.data(), buffer.size());
        contents.append(buffer.data(), static_cast<std::size_t>(file.gcount()));
    }
    if (!file.is_open() || file.bad()) {
        throw std::runtime_error("Could not read " + path.string() + ": " +
                                 std::error_code(errno, std::generic_category()).message());
    }
    return contents;
}

} // namespace Platform
