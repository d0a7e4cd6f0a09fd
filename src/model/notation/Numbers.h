// Numbers in texts, always with "." and never with the user's locale. Each converter reads as far as the text
// is a number, after leading white space, and leaves what follows alone. A text that begins with no number is
// refused with an Exception "Invalid number: TEXT".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Stackbrace {

// 0x10 is hexadecimal, 010 octal. What does not fit is brought to the nearer end of the range.
std::int32_t toInt32(std::string_view text);

// As C's strtod reads them: hexadecimal floats, "inf" and "nan" included; beyond the range infinite or 0.
double toFloat64(std::string_view text);
float toFloat32(std::string_view text);

// The shortest text that reads back to the same value, without an exponent.
std::string numberText(float value);

} // namespace Stackbrace
