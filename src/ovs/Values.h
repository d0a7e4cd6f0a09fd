// What the instructions read from arguments again and again: numbers within a range, keywords from a table, colours. The
// errors are ZEKT's.
#pragma once

#include "drawing/Colour.h"
#include "zekt/Arguments.h"
#include "zekt/Errors.h"

#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace OVS {

[[noreturn]] void fail(std::string message); // a ZEKT::RunTimeException

// As error messages show numbers.
std::string shown(double value);
std::string shown(long long value);

// Each fails with `message` and the value.
double atLeast(double least, double value, std::string_view message);
double above(double limit, double value, std::string_view message);
double within(double least, double most, double value, std::string_view message);

inline double notNegative(double value, std::string_view message) {
    return atLeast(0.0, value, message);
}

// Keywords are compared in lower case; an unknown one fails with `message` and the text as it was written.
template <class Value>
Value keyword(const ZEKT::Argument& argument, std::span<const std::pair<std::string_view, Value>> table,
              std::string_view message) {
    const std::string word = argument.keyword();
    for (const auto& [name, value] : table) {
        if (name == word) {
            return value;
        }
    }
    fail(std::string(message) + argument.text());
}

Drawing::Colour colourOf(std::string_view text);

} // namespace OVS
