// Files that are nowhere but here, in one folder that can be written to.
#pragma once

#include "model/TextFiles.h"

#include <functional>
#include <map>
#include <stdexcept>
#include <utility>

struct FilesInMemory : Model::TextFiles {
    std::filesystem::path writable;
    std::map<std::filesystem::path, std::string> files;
    std::function<void()> meanwhile; // what another thread does while one is written

    explicit FilesInMemory(std::filesystem::path folder) : writable(std::move(folder)) {}

    std::string read(const std::filesystem::path& path) const override {
        const auto file = files.find(path);
        return file != files.end() ? file->second : throw std::runtime_error("no such file");
    }
    void write(const std::filesystem::path& path, const std::string& contents) override {
        if (path.parent_path() != writable) {
            throw std::runtime_error("read-only file system");
        }
        files[path] = contents;
        if (meanwhile) {
            meanwhile();
        }
    }
};
