// A shared record in a file: FILE, with FILE.lock beside it, and FILE.damaged for what was set aside.
#pragma once

#include "platform/SharedRecord.h"

#include <chrono>
#include <filesystem>

namespace Platform {

class SharedFile final : public SharedRecord {
public:
    // The folder is made when the first contents are stored. A program that holds the lock longer than
    // `patience` makes updates fail.
    explicit SharedFile(std::filesystem::path file,
                        std::chrono::milliseconds patience = std::chrono::seconds(3));

    std::string read() const override;
    void update(const std::function<Replacement(const std::string& contents)>& change) override;

private:
    std::filesystem::path file_;
    std::chrono::milliseconds patience_;
};

} // namespace Platform
