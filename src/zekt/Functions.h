// The functions of expressions, by name.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace ZEKT {

// The index of a function of one number.
std::optional<std::uint32_t> findFunction(std::string_view name);

// RunTimeException: the three special texts, "Number overflow", "Math error".
double callFunction(std::uint32_t index, double x);
double power(double base, double exponent);

} // namespace ZEKT
