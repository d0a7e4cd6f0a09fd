#include "platform/FileRead.h"

#include "platform/PathText.h"

#include "platform/LargePages.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace Platform {

std::string readAll(std::istream& stream, std::size_t sizeHint) {
    constexpr std::size_t kLeastBlock = 65536;
    std::string contents;
    std::size_t size = 0;
    while (stream) {
        const std::size_t enough = size + std::max({kLeastBlock, size, sizeHint});
        contents.reserve(enough);
        preferLargePages(contents.data() + size, enough - size);
        contents.resize(enough);
        sizeHint = 0;
        stream.read(contents.data() + size, static_cast<std::streamsize>(contents.size() - size));
        size += static_cast<std::size_t>(stream.gcount());
    }
    contents.resize(size);
    return contents;
}

std::string readFile(const std::filesystem::path& path) {
    std::error_code unknown;
    const auto fileSize = std::filesystem::file_size(path, unknown); // none for pipes, and it may change yet
    std::ifstream file(path, std::ios::binary);
    std::string contents = readAll(file, unknown ? 0 : static_cast<std::size_t>(fileSize) + 1);
    if (!file.is_open() || file.bad()) {
        throw std::runtime_error("Could not read " + utf8Of(path) + ": " +
                                 std::error_code(errno, std::generic_category()).message());
    }
    return contents;
}

} // namespace Platform
