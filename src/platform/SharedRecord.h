// One record of bytes that all programs of this user share and change without losing each other's changes: a
// file with a lock beside it, or a registry value behind a named mutex.
#pragma once

#include <functional>
#include <string>

namespace Platform {

class SharedRecord {
public:
    virtual ~SharedRecord() = default;

    struct Replacement {
        std::string contents;
        bool setAside = false; // keep what the record held under another name, for somebody to look at
    };

    // All or nothing of what some program has stored last; empty when there is nothing yet. Throws
    // std::runtime_error when the record cannot be reached.
    virtual std::string read() const = 0;

    // Replaces the record by what `change` makes of it. Nobody else changes it in between. When `change`
    // throws, or the record cannot be reached (std::runtime_error), it stays as it was.
    virtual void update(const std::function<Replacement(const std::string& contents)>& change) = 0;
};

} // namespace Platform
