// The files that the user opens and saves.
#pragma once

#include <filesystem>
#include <string>

namespace Model {

class TextFiles {
public:
    virtual ~TextFiles() = default;

    // Both throw std::runtime_error that says which file and why. A file that cannot be written stays as it
    // was.
    virtual std::string read(const std::filesystem::path& path) const = 0;
    virtual void write(const std::filesystem::path& path, const std::string& contents) = 0;
};

class DiskFiles final : public TextFiles {
public:
    std::string read(const std::filesystem::path& path) const override;
    void write(const std::filesystem::path& path, const std::string& contents) override;
};

} // namespace Model
