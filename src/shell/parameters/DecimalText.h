// Exact arithmetic on decimal texts, as far as linear parameter scales need it: a value near the lower end of
// a scale that starts below zero (pitch at 1e-20) shows as a number with more digits than a double holds, and
// has to read back to the same float all the same. Only ParameterText uses it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Parameters {

// A plain decimal number ("-12", "0.5", ".5", "1e-3") taken apart; nullopt for anything else, and for numbers
// with more digits than any float needs.
struct Decimal {
    bool negative = false;
    std::string digits;       // without a point
    std::size_t decimals = 0; // how many of the digits stand after the point

    static std::optional<Decimal> parse(std::string_view text);
    std::string text() const;
};

// value * factor + offset, exactly. `value` must not be negative.
Decimal scaled(const Decimal& value, int factor, int offset);

// (value - offset) / divisor, cut off (not rounded) far beyond a float's precision. The result is 0 where it
// would be negative.
Decimal unscaled(const Decimal& value, int divisor, int offset);

} // namespace Parameters
