// A shared record that nobody outside sees, for tests and for programs that are to leave no trace.
#pragma once

#include "platform/SharedRecord.h"

#include <mutex>
#include <string>

namespace Platform {

class MemoryRecord final : public SharedRecord {
public:
    explicit MemoryRecord(std::string contents = {}) : contents_(std::move(contents)) {}

    std::string read() const override {
        const std::lock_guard lock(mutex_);
        return contents_;
    }

    void update(const std::function<Replacement(const std::string&)>& change) override {
        const std::lock_guard lock(mutex_);
        Replacement next = change(contents_);
        if (next.setAside) {
            setAside_ = contents_;
        }
        contents_ = std::move(next.contents);
    }

    std::string setAside() const {
        const std::lock_guard lock(mutex_);
        return setAside_;
    }

private:
    mutable std::mutex mutex_;
    std::string contents_;
    std::string setAside_;
};

} // namespace Platform
