#include "tombola/Exception.h"

#include <utility>

namespace Tombola {

Exception::Exception(std::string message, Stackbrace::Position position)
    : message_(std::move(message)), position_(std::move(position)) {}

const char* Exception::what() const noexcept {
    try {
        if (text_.empty()) {
            std::string text = "Tombola error: " + message_ + " (";
            if (!position_.sourceName.empty()) {
                text += position_.sourceName + " ";
            }
            text += "line " + std::to_string(position_.line);
            text += ", column " + std::to_string(position_.column) + ")";
            text_ = std::move(text);
        }
        return text_.c_str();
    } catch (...) {
        return "exception in Tombola::Exception::what()";
    }
}

} // namespace Tombola
