// Errors of layouts, actions and texts on their way to the user. One fault often brings a dozen more in its
// wake, so only a few wait at a time; the rest goes to the log.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace Quilt {

// Source texts to translated ones. A document shares its table with the errors that it reported, which may be
// shown when it is gone.
using Translations = std::map<std::string, std::string, std::less<>>;

class ErrorQueue {
public:
    static constexpr std::size_t kMostWaiting = 4;

    struct Error {
        std::string title;
        std::string message;
        std::string detail; // for those who asked for verbose errors
        std::shared_ptr<const Translations> translations;
    };

    explicit ErrorQueue(std::function<void(const std::string&)> log) : log_(std::move(log)) {}

    void add(Error error) {
        if (waiting_.size() < kMostWaiting) {
            waiting_.push_back(std::move(error));
        } else {
            log_("Error queue overflow: " + error.title + " " + error.message);
        }
    }

    std::optional<Error> take() {
        if (waiting_.empty()) {
            return std::nullopt;
        }
        Error error = std::move(waiting_.front());
        waiting_.pop_front();
        return error;
    }

private:
    std::function<void(const std::string&)> log_;
    std::deque<Error> waiting_;
};

} // namespace Quilt
