// What the macro processor throws.
#pragma once

#include "notation/Position.h"

#include <cstdint>
#include <exception>
#include <string>

namespace Tombola {

class Exception : public std::exception {
public:
    Exception(std::string message, Stackbrace::Position position);

    // "Tombola error: MESSAGE (NAME line 2, column 7)", built at the first call.
    const char* what() const noexcept override;

    const std::string& message() const noexcept { return message_; }
    const std::string& sourceName() const noexcept { return position_.sourceName; }
    std::uint64_t offset() const noexcept { return position_.offset; }
    std::uint32_t line() const noexcept { return position_.line; }
    std::uint32_t column() const noexcept { return position_.column; }

private:
    std::string message_;
    Stackbrace::Position position_;
    mutable std::string text_;
};

} // namespace Tombola
