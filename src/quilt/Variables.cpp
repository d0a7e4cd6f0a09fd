#include "quilt/Variables.h"

#include <exception>
#include <stdexcept>

namespace Quilt {

std::optional<std::string> Variables::read(std::string_view name) const {
    if (provider_ != nullptr) {
        if (auto value = provider_->get(name)) {
            return value;
        }
    }
    const auto found = table_.find(name);
    return found == table_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::string> Variables::find(std::string_view name) const {
    if (!snapshotUsed_) {
        return read(name);
    }
    if (const auto known = snapshot_.find(name); known != snapshot_.end()) {
        return known->second;
    }
    auto value = read(name);
    if (value) {
        snapshot_.emplace(name, *value);
    }
    return value;
}

std::string Variables::get(std::string_view name) const {
    if (auto value = find(name)) {
        return *std::move(value);
    }
    throw std::runtime_error(snapshotUsed_ ? "Inconsistent variable access"
                                           : "Unknown variable: " + std::string(name));
}

void Variables::set(std::string_view name, std::string_view value) {
    if (holds_ > 0) {
        queued_.emplace_back(name, value);
    } else {
        write(name, value);
    }
}

void Variables::write(std::string_view name, std::string_view value) {
    if (provider_ == nullptr || !provider_->set(name, value)) {
        const auto found = table_.find(name);
        if (found == table_.end()) {
            table_.emplace(name, value);
            ++tableChanges_;
        } else if (found->second != value) {
            found->second = value;
            ++tableChanges_;
        }
    }
    if (written_) {
        written_(name);
    }
}

std::uint64_t Variables::changeCount() const {
    // Both only grow, so the sum tells a change of either.
    return tableChanges_ + (provider_ == nullptr ? 0 : provider_->changeCount());
}

void Variables::release(const Failed& failed) {
    if (--holds_ > 0) {
        return;
    }
    const auto writes = std::exchange(queued_, {});
    for (const auto& [name, value] : writes) {
        try {
            write(name, value);
        } catch (const std::exception& error) {
            failed(error);
        }
    }
}

void Variables::beginUpdate(bool consistent) {
    hold();
    snapshotUsed_ = consistent;
}

void Variables::endUpdate(const Failed& failed) {
    snapshotUsed_ = false;
    snapshot_.clear();
    release(failed);
}

} // namespace Quilt
