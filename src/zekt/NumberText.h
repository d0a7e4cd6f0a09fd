// Numbers and their texts, and the other conversions from text. A number's text has 13 significant digits, so
// a number that is kept has to be rounded as if it had gone through its text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ZEKT {

enum class Numeric : std::uint8_t {
    unknown, // nobody has tried
    no,
    yes,
    overflow, // of the form of a number, but too large for one
};

// A sign, digits with an optional point, an optional exponent, and nothing else.
Numeric readNumber(std::string_view text, double& value);

// The length of the number without a sign that `text` begins with; 0 for none.
std::size_t numberLength(std::string_view text);

// RunTimeException "Invalid number: TEXT", "Number overflow"; "Invalid integer: TEXT"; "Invalid boolean ...".
double toNumber(std::string_view text);
std::int64_t toInteger(std::string_view text);
bool toBoolean(std::string_view text);

constexpr std::string_view booleanText(bool value) {
    return value ? "yes" : "no";
}

inline constexpr std::size_t kLongestNumberText = 32;

// Writes the text into `buffer` of at least that length.
std::string_view numberText(double value, char* buffer);

// The value that the number's text reads back to.
double roundedAsText(double value);

} // namespace ZEKT
