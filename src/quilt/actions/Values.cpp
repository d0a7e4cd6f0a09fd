// Actions that write variables.
#include "expression/Expression.h"
#include "quilt/Document.h"
#include "quilt/Properties.h"
#include "quilt/actions/Actions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>

namespace Quilt {

namespace {

struct Assignment {
    std::string variable;
    std::string value;
};

Assignment readSet(const Stackbrace::Element& params) {
    const auto structure = params.structure();
    const auto variable = structure["variable"];
    const auto* const value = structure.find("value");
    if (variable.empty() || value == nullptr) {
        throw std::runtime_error("Invalid set params");
    }
    return {variable.string(), value->empty() ? std::string() : value->string()};
}

bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

std::string lowercase(const ActionCall&, std::string text) {
    for (char& c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return text;
}

std::string uppercase(const ActionCall&, std::string text) {
    for (char& c : text) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return text;
}

std::string trimmed(const ActionCall&, std::string text) {
    const auto first = std::ranges::find_if_not(text, isBlank);
    text.erase(text.begin(), first);
    while (!text.empty() && isBlank(text.back())) {
        text.pop_back();
    }
    return text;
}

// Fit for a field of one line, in which somebody is to change it.
std::string modifiable(const ActionCall&, std::string text) {
    for (char& c : text) {
        c = static_cast<unsigned char>(c) < 0x20 || c == 0x7F ? ' ' : c;
    }
    return text;
}

std::string translated(const ActionCall& call, std::string text) {
    return call.translate(text);
}

// An expression in which variables stand by their names.
std::string calculated(const ActionCall& call, std::string text) {
    const double value =
        evaluateAll<double>(text, 0.0, [&call](std::string_view name) -> std::optional<double> {
            const auto variable = call.get(name);
            return variable ? wholeNumber(*variable) : std::nullopt;
        });
    std::array<char, 400> digits{}; // the largest double has 309 before the point
    const auto [end, error] =
        std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed);
    return {digits.data(), error == std::errc() ? end : digits.data()};
}

std::string metatext(const ActionCall& call, std::string text) {
    return call.expandMetaText(text);
}

struct Transform {
    std::string_view name;
    std::string (*apply)(const ActionCall&, std::string);
};

constexpr Transform kTransforms[] = {
    {"lowercase", lowercase}, {"trimmed", trimmed},       {"modifiable", modifiable},
    {"uppercase", uppercase}, {"translated", translated}, {"calculated", calculated},
    {"metatext", metatext},
};

} // namespace

void performSet(ActionCall& call, const Stackbrace::Element& params) {
    const auto [variable, value] = readSet(params);
    call.set(variable, value);
}

ActionState stateOfSet(const ActionCall& call, const Stackbrace::Element& params) {
    const auto [variable, value] = readSet(params);
    return {true, call.get(variable) == value};
}

void performAssign(ActionCall& call, const Stackbrace::Element& params) {
    const auto structure = params.structure();
    const auto variable = structure["variable"];
    const auto* const source = structure.find("sourceVariable");
    const auto* const literal = structure.find("value");
    if (variable.empty() || (source == nullptr) == (literal == nullptr)) {
        throw std::runtime_error("Invalid assign params");
    }
    std::string value = source != nullptr  ? call.document().variables().get(source->string())
                        : literal->empty() ? std::string()
                                           : literal->string();
    for (const auto& name : structure["transforms"].list()) {
        const auto* const transform = std::ranges::find(kTransforms, name.string(), &Transform::name);
        if (transform == std::end(kTransforms)) {
            throw std::runtime_error("Invalid assign params");
        }
        value = transform->apply(call, std::move(value));
    }
    call.set(variable.string(), value);
}

} // namespace Quilt
