#include "bridge/NumberText.h"

#include "notation/Numbers.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace Bridge {

std::string numberText(float value) {
    return Stackbrace::numberText(value);
}

namespace {

template <typename Number> std::optional<Number> wholeText(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
    }
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

} // namespace

std::optional<float> numberOf(std::string_view text) {
    const auto number = wholeText<double>(text);
    if (!number || !std::isfinite(*number)) {
        return std::nullopt;
    }
    // Read as a float where it is one: by way of a double it might be rounded twice.
    return wholeText<float>(text).value_or(static_cast<float>(*number));
}

std::optional<int> wholeNumberOf(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
    }
    const bool negative = text.starts_with('-');
    if (negative) {
        text.remove_prefix(1);
    }
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        text.remove_prefix(2);
        base = 16;
    } else if (text.starts_with('0')) {
        base = 8;
    }
    unsigned number = 0; // no second sign
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc() || end != text.data() + text.size() || number > std::numeric_limits<int>::max()) {
        return std::nullopt;
    }
    return negative ? -static_cast<int>(number) : static_cast<int>(number);
}

} // namespace Bridge
