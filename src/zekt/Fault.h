// A failure found while parsing, kept to be thrown when execution gets there: a parsed form fails exactly
// where reading the text step by step would have.
#pragma once

#include "zekt/Errors.h"

#include <string>

namespace ZEKT {

class Fault {
public:
    explicit Fault(const Exception& error)
        : message_(error.what()), syntax_(dynamic_cast<const SyntaxException*>(&error) != nullptr) {}

    [[noreturn]] void raise() const {
        if (syntax_) {
            throw SyntaxException(message_);
        }
        throw RunTimeException(message_);
    }

private:
    std::string message_;
    bool syntax_;
};

} // namespace ZEKT
