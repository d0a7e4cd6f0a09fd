#include "notation/Errors.h"

#include <algorithm>
#include <utility>

namespace Stackbrace {

Position positionIn(std::string_view text, std::size_t offset, std::string sourceName) {
    const std::string_view before = text.substr(0, offset);
    const auto lineStart = before.rfind('\n') + 1; // npos + 1 is 0: the first line
    return {std::move(sourceName), static_cast<std::uint32_t>(1 + std::ranges::count(before, '\n')),
            static_cast<std::uint32_t>(1 + before.size() - lineStart), before.size()};
}

ParsingError::ParsingError(const std::string& message, Position position)
    : Exception(message), position_(std::move(position)) {}

const char* ParsingError::what() const noexcept {
    try {
        if (text_.empty()) {
            std::string text = "Invalid Stackbrace";
            if (!position_.sourceName.empty()) {
                text += " in " + position_.sourceName;
            }
            text += " at line " + std::to_string(position_.line);
            text += " column " + std::to_string(position_.column);
            text += " (offset " + std::to_string(position_.offset) + ")";
            text_ = std::move(text);
        }
        return text_.c_str();
    } catch (...) {
        return "exception in Stackbrace::ParsingError::what()";
    }
}

UndefinedElementError::UndefinedElementError(const std::string& key)
    : Exception("Undefined element: " + key), key_(key) {}

} // namespace Stackbrace
