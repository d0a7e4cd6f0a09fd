// Parameters as the command line sets them: "NAME=VALUE" with the text people see, or "NAME:=NUMBER" with the
// normalised value.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Tool {

struct ParameterAssignment {
    int id = 0;
    std::string text;                // what to parse, when no value is given
    std::optional<float> normalised; // 0..1
};

// Throw std::runtime_error with the offending text.
ParameterAssignment readAssignment(std::string_view text);
int parameterNamed(std::string_view name);
[[noreturn]] void refuseValue(const ParameterAssignment& assignment);

// A finite decimal number, and nothing else, in the C locale.
std::optional<double> numberOf(std::string_view text);

} // namespace Tool
