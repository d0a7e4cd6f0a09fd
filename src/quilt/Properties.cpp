#include "quilt/Properties.h"

#include "notation/Errors.h"
#include "quilt/LayoutError.h"

#include <algorithm>
#include <cassert>
#include <charconv>
#include <cmath>

namespace Quilt {

namespace {

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
        text.remove_prefix(1);
    }
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) {
        text.remove_suffix(1);
    }
    return text;
}

template <typename Number>
std::optional<Number> readWhole(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with('+')) {
        text.remove_prefix(1);
    }
    Number number{};
    const auto* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stopped == end ? std::optional(number) : std::nullopt;
}

bool isOneOf(std::string_view word, std::string_view choices) {
    const auto all = words(choices);
    return std::ranges::find(all, word) != all.end();
}

std::string listed(std::string_view choices) {
    std::string text;
    const auto all = words(choices);
    for (std::size_t i = 0; i < all.size(); ++i) {
        text += i == 0 ? "" : i + 1 == all.size() ? " or " : ", ";
        text += all[i];
    }
    return text;
}

std::optional<Align> readAlign(std::string_view text) {
    constexpr std::string_view kAcross[] = {"left", "center", "right"};
    constexpr std::string_view kDown[] = {"top", "middle", "bottom"};
    Align align{0.5, 0.5};
    bool across = false;
    bool down = false;
    for (const auto word : words(text)) {
        const auto* const x = std::ranges::find(kAcross, word);
        const auto* const y = std::ranges::find(kDown, word);
        if (x != std::end(kAcross) && !across) {
            align.x = 0.5 * static_cast<double>(x - kAcross);
            across = true;
        } else if (y != std::end(kDown) && !down) {
            align.y = 0.5 * static_cast<double>(y - kDown);
            down = true;
        } else {
            return std::nullopt;
        }
    }
    return across || down ? std::optional(align) : std::nullopt;
}

// Two numbers, or nothing.
std::optional<std::pair<double, double>> readPair(const Stackbrace::Element& element) {
    const auto list = Stackbrace::readList(element);
    if (!list.complete() || list.size() != 2) {
        return std::nullopt;
    }
    const auto first = wholeNumber(list[0].string());
    const auto second = wholeNumber(list[1].string());
    return first && second ? std::optional(std::pair(*first, *second)) : std::nullopt;
}

std::string limitsText(const Property& row) {
    const auto text = [](double limit) {
        return limit == std::floor(limit) ? std::to_string(static_cast<long long>(limit))
                                          : std::to_string(limit).substr(0, 5);
    };
    if (std::isinf(row.most)) {
        return "at least " + text(row.least);
    }
    return "from " + text(row.least) + " to " + text(row.most);
}

} // namespace

std::optional<double> wholeNumber(std::string_view text) {
    const auto number = readWhole<double>(text);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<std::int32_t> wholeInteger(std::string_view text) {
    return readWhole<std::int32_t>(text);
}

std::optional<bool> wholeBoolean(std::string_view text) {
    text = trimmed(text);
    return text == "true" ? std::optional(true) : text == "false" ? std::optional(false) : std::nullopt;
}

std::vector<std::string_view> words(std::string_view text) {
    std::vector<std::string_view> found;
    while (!(text = trimmed(text)).empty()) {
        const std::size_t length = std::min(text.find(' '), text.size());
        found.push_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return found;
}

std::string_view kindText(PropertyKind kind) {
    switch (kind) {
    case PropertyKind::boolean:
        return "boolean";
    case PropertyKind::condition:
        return "condition";
    case PropertyKind::integer:
        return "integer";
    case PropertyKind::number:
        return "number";
    case PropertyKind::level:
        return "level";
    case PropertyKind::range:
        return "range";
    case PropertyKind::offset:
        return "offset";
    case PropertyKind::align:
        return "align";
    case PropertyKind::choice:
        return "word";
    case PropertyKind::text:
        return "text";
    case PropertyKind::variable:
        return "variable";
    case PropertyKind::color:
        return "color";
    case PropertyKind::colors:
        return "colors";
    case PropertyKind::numbers:
        return "numbers";
    case PropertyKind::stateColors:
        return "color a state";
    case PropertyKind::image:
        return "image";
    case PropertyKind::stateImages:
        return "image a state";
    case PropertyKind::film:
        return "film";
    case PropertyKind::font:
        return "font";
    case PropertyKind::action:
        return "action";
    case PropertyKind::params:
        return "params";
    case PropertyKind::views:
        return "views";
    case PropertyKind::pages:
        return "pages";
    }
    return "";
}

double Range::position(double value) const {
    // `value` may be infinite or no number, when a variable's text says so.
    const double at = (value - from) / (to - from);
    return at >= 0 ? std::min(at, 1.0) : 0.0;
}

Properties::Properties(std::string_view type, const PropertyRows& rows, const Stackbrace::Element& view)
    : type_(type), rows_(rows), view_(view), structure_(view.structure()) {
    for (const auto& [key, value] : structure_) {
        const Property* const known = findRow(key);
        if (known == nullptr) {
            throw LayoutError("Unknown property of " + std::string(type_) + ": " + std::string(key), value);
        }
        check(*known, value);
    }
    for (const auto& group : rows_) {
        for (const Property& needed : group) {
            if (needed.required && !has(needed.name)) {
                throw LayoutError(
                    "Missing property of " + std::string(type_) + ": " + std::string(needed.name), view_);
            }
        }
    }
}

const Property* Properties::findRow(std::string_view name) const {
    for (const auto& group : rows_) {
        for (const Property& candidate : group) {
            if (candidate.name == name) {
                return &candidate;
            }
        }
    }
    return nullptr;
}

const Property& Properties::row(std::string_view name) const {
    const Property* const known = findRow(name);
    assert(known != nullptr);
    return *known;
}

void Properties::fail(std::string_view name, const std::string& reason) const {
    throw LayoutError("Invalid " + std::string(name) + " of " + std::string(type_) + ": " + reason,
                      has(name) ? structure_[name] : view_);
}

void Properties::check(const Property& row, const Stackbrace::Element& value) const {
    const auto require = [&](bool fits, const std::string& wanted) {
        if (!fits) {
            fail(row.name, std::string(value.raw()) + " (expected " + wanted + ")");
        }
    };
    const auto requireInRange = [&](double number) {
        if (number < row.least || number > row.most) {
            require(false, limitsText(row));
        }
    };
    const auto text = value.empty() ? std::string() : value.string();
    switch (row.kind) {
    case PropertyKind::boolean:
        require(wholeBoolean(text).has_value(), "true or false");
        break;
    case PropertyKind::condition:
        require(text.find('[') != std::string::npos || wholeBoolean(text), "true or false");
        break;
    case PropertyKind::integer:
        require(wholeInteger(text).has_value(), "a whole number");
        requireInRange(*wholeInteger(text));
        break;
    case PropertyKind::number:
        require(wholeNumber(text).has_value(), "a number");
        requireInRange(*wholeNumber(text));
        break;
    case PropertyKind::level:
        require(text.find('[') != std::string::npos || wholeNumber(text), "a number");
        break;
    case PropertyKind::range: {
        const auto pair = readPair(value);
        require(pair && pair->first != pair->second, "two different numbers");
        break;
    }
    case PropertyKind::offset:
        require(readPair(value).has_value(), "two numbers");
        break;
    case PropertyKind::align:
        require(readAlign(text).has_value(), "left, center or right, top, middle or bottom");
        break;
    case PropertyKind::choice:
        require(isOneOf(text, row.choices), listed(row.choices));
        break;
    case PropertyKind::variable:
    case PropertyKind::action:
    case PropertyKind::color:
        require(!text.empty(), "a " + std::string(kindText(row.kind)));
        break;
    case PropertyKind::numbers:
        for (const auto& item : value.list()) {
            require(wholeNumber(item.string()).has_value(), "numbers");
        }
        break;
    case PropertyKind::stateColors:
    case PropertyKind::stateImages:
        for (const auto& [state, of] : value.structure()) {
            require(isOneOf(state, row.choices), listed(row.choices));
        }
        break;
    case PropertyKind::colors:
    case PropertyKind::views:
        static_cast<void>(value.list());
        break;
    case PropertyKind::pages:
        static_cast<void>(value.structure());
        break;
    case PropertyKind::text:
    case PropertyKind::image:
    case PropertyKind::film:
    case PropertyKind::font:
    case PropertyKind::params:
        break;
    }
}

std::string Properties::string(std::string_view name) const {
    const auto* const found = structure_.find(name);
    return found == nullptr ? std::string(row(name).fallback)
           : found->empty() ? std::string()
                            : found->string();
}

std::string Properties::raw(std::string_view name) const {
    const auto* const found = structure_.find(name);
    return std::string(found == nullptr ? row(name).fallback : found->raw());
}

bool Properties::boolean(std::string_view name) const {
    return wholeBoolean(string(name)).value_or(false);
}

std::int32_t Properties::integer(std::string_view name) const {
    return wholeInteger(string(name)).value_or(0);
}

double Properties::number(std::string_view name) const {
    return wholeNumber(string(name)).value_or(0);
}

Range Properties::range(std::string_view name) const {
    if (!has(name)) {
        return {};
    }
    const auto pair = readPair(element(name));
    return {pair->first, pair->second};
}

Point Properties::offset(std::string_view name) const {
    if (!has(name)) {
        return {};
    }
    const auto pair = readPair(element(name));
    static constexpr double kFar = 1e6;
    const auto whole = [](double units) {
        return static_cast<std::int32_t>(std::lround(std::clamp(units, -kFar, kFar)));
    };
    return {whole(pair->first), whole(pair->second)};
}

Align Properties::align(std::string_view name) const {
    return readAlign(string(name)).value_or(Align{});
}

std::vector<double> Properties::numbers(std::string_view name) const {
    std::vector<double> values;
    for (const auto& text : strings(name)) {
        values.push_back(wholeNumber(text).value_or(0));
    }
    return values;
}

std::vector<std::string> Properties::strings(std::string_view name) const {
    std::vector<std::string> values;
    if (has(name)) {
        for (const auto& item : element(name).list()) {
            values.push_back(item.string());
        }
    }
    return values;
}

} // namespace Quilt
