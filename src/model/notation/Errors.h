// What reading and converting throw. Readers of lists and structures throw nothing of this for a text of the
// wrong shape: they say that they could not read to the end.
#pragma once

#include "notation/Position.h"

#include <stdexcept>
#include <string>

namespace Stackbrace {

class Exception : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Malformed text. what() tells the place, "Invalid Stackbrace in NAME at line 2 column 7 (offset 31)";
// message() tells the reason.
class ParsingError : public Exception {
public:
    ParsingError(const std::string& message, Position position);

    const char* what() const noexcept override; // built at the first call
    const char* message() const noexcept { return std::runtime_error::what(); }

    const std::string& sourceName() const noexcept { return position_.sourceName; }
    std::uint32_t line() const noexcept { return position_.line; }
    std::uint32_t column() const noexcept { return position_.column; }
    std::uint64_t offset() const noexcept { return position_.offset; }

private:
    Position position_;
    mutable std::string text_;
};

// A structure lacks a key that its reader cannot do without.
class UndefinedElementError : public Exception {
public:
    explicit UndefinedElementError(const std::string& key);

    const std::string& key() const noexcept { return key_; }

private:
    std::string key_;
};

} // namespace Stackbrace
