#include "notation/Cursor.h"

#include "notation/Errors.h"
#include "notation/Numbers.h"
#include "notation/Quoting.h"
#include "notation/Scan.h"

namespace Stackbrace {

void Cursor::skipBlanks() {
    while (!atEnd() && Scan::in(rest().front(), Scan::blank | Scan::lineEnd)) {
        ++at_;
    }
}

bool Cursor::accept(std::string_view word) {
    if (!rest().starts_with(word)) {
        return false;
    }
    at_ += word.size();
    return true;
}

Position Cursor::position() const {
    return element_.document_->position(element_.begin_ + at_);
}

void Cursor::fail(const std::string& message) const {
    throw ParsingError(message, position());
}

bool Cursor::boolean() {
    skipBlanks();
    const bool isFalse = accept("false");
    if (!isFalse && !accept("true")) {
        fail("Neither true nor false");
    }
    skipBlanks();
    if (!atEnd()) {
        fail("Text after a boolean");
    }
    return !isFalse;
}

std::string Cursor::string() {
    std::string content;
    if (at_ == 0 && !element_.regular_) {
        content = element_.text(); // several words, so not quoted
    } else if (const auto fault = unquoteInto(rest(), content)) {
        at_ += *fault;
        fail("Invalid string");
    }
    at_ = element_.raw().size();
    return content;
}

std::string_view Cursor::number() {
    skipBlanks();
    if (atEnd()) {
        fail("A number is missing");
    }
    return rest();
}

std::int32_t Cursor::integer() {
    return toInt32(number());
}

float Cursor::float32() {
    return toFloat32(number());
}

double Cursor::float64() {
    return toFloat64(number());
}

} // namespace Stackbrace
