#include "bridge/ActionParams.h"

#include "bridge/NumberText.h"
#include "notation/Errors.h"

#include <algorithm>
#include <stdexcept>

namespace Bridge {

ActionParams::ActionParams(std::string_view action, std::string_view params,
                           std::initializer_list<std::string_view> keys)
    : action_(action), document_(std::string(params)) {
    try {
        structure_ = document_.root().structure();
    } catch (const Stackbrace::Exception&) {
        refuse();
    }
    for (const auto& entry : structure_) {
        if (std::ranges::find(keys, entry.key) == keys.end()) {
            refuse();
        }
    }
}

std::optional<std::string> ActionParams::string(std::string_view key) const {
    const auto* value = find(key);
    try {
        return value ? std::optional(value->string()) : std::nullopt;
    } catch (const Stackbrace::Exception&) {
        refuse();
    }
}

bool ActionParams::boolean(std::string_view key, bool otherwise) const {
    const auto text = string(key);
    if (text && *text != "true" && *text != "false") {
        refuse();
    }
    return text ? *text == "true" : otherwise;
}

std::optional<int> ActionParams::integer(std::string_view key) const {
    const auto text = string(key);
    if (!text) {
        return std::nullopt;
    }
    if (const auto number = wholeNumberOf(*text)) {
        return number;
    }
    refuse();
}

void ActionParams::refuse() const {
    throw std::runtime_error("Invalid action params for " + action_ + ": " + std::string(document_.text()));
}

} // namespace Bridge
