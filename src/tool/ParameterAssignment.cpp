#include "tool/ParameterAssignment.h"

#include "parameters/ParameterTable.h"

#include <fmt/core.h>

#include <charconv>
#include <cmath>
#include <stdexcept>

namespace Tool {

ParameterAssignment readAssignment(std::string_view text) {
    const auto equals = text.find('=');
    if (equals == std::string_view::npos || equals == 0) {
        throw std::runtime_error(fmt::format("Invalid parameter (NAME=VALUE or NAME:=NUMBER): {}", text));
    }
    const bool isNormalised = text[equals - 1] == ':';
    const std::string_view value = text.substr(equals + 1);
    ParameterAssignment assignment{.id = parameterNamed(text.substr(0, isNormalised ? equals - 1 : equals)),
                                   .text = std::string(value),
                                   .normalised = {}};
    if (isNormalised) {
        const auto number = numberOf(value);
        if (!number || *number < 0 || *number > 1) {
            refuseValue(assignment);
        }
        assignment.normalised = static_cast<float>(*number);
    }
    return assignment;
}

int parameterNamed(std::string_view name) {
    if (const auto id = Parameters::find(name)) {
        return *id;
    }
    throw std::runtime_error(fmt::format("Unknown parameter: {}", name));
}

void refuseValue(const ParameterAssignment& assignment) {
    throw std::runtime_error(fmt::format("Invalid value for {}: {}",
                                         Parameters::kTable[static_cast<std::size_t>(assignment.id)].name,
                                         assignment.text));
}

std::optional<double> numberOf(std::string_view text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size() || !std::isfinite(number)) {
        return std::nullopt;
    }
    return number;
}

} // namespace Tool
