// A place inside an element, for reading values a piece at a time. Errors are raised where the cursor stands.
#pragma once

#include "notation/Document.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Stackbrace {

class Cursor {
public:
    explicit Cursor(const Element& element) : element_(element) {}

    std::string_view rest() const { return element_.raw().substr(at_); }
    bool atEnd() const { return rest().empty(); }
    void skipBlanks(); // no comments

    // Steps over `word` if it comes next.
    bool accept(std::string_view word);

    Position position() const;
    [[noreturn]] void fail(const std::string& message) const; // ParsingError

    // Whole values, from here to the element's end.
    bool boolean();
    std::string string();
    std::int32_t integer();
    float float32();
    double float64();

private:
    std::string_view number();

    Element element_;
    std::size_t at_ = 0;
};

} // namespace Stackbrace
