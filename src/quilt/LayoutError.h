// What is wrong in a layout document, with the place where it stands.
#pragma once

#include "notation/Document.h"

#include <stdexcept>
#include <string>

namespace Quilt {

// "(NAME line 3, column 7)", the way Tombola's errors end.
inline std::string placeText(const Stackbrace::Position& position) {
    std::string text = "(";
    if (!position.sourceName.empty()) {
        text += position.sourceName + " ";
    }
    return text + "line " + std::to_string(position.line) + ", column " + std::to_string(position.column) +
           ")";
}

class LayoutError : public std::runtime_error {
public:
    LayoutError(const std::string& message, const Stackbrace::Position& position)
        : std::runtime_error(message + " " + placeText(position)) {}
    LayoutError(const std::string& message, const Stackbrace::Element& element)
        : LayoutError(message, element.position()) {}
};

} // namespace Quilt
