// Numbers in variables and in the parameters of actions.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Bridge {

// The shortest text that reads back to the same float, without an exponent.
std::string numberText(float value);

// nullopt for anything but one finite number.
std::optional<float> numberOf(std::string_view text);

// As the notation's integers are written, 0x90 and octal 017 included, but nothing may follow.
std::optional<int> wholeNumberOf(std::string_view text);

} // namespace Bridge
