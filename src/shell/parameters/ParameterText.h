// Between a parameter's normalised value and the text that people, patch files and hosts see. The text is the
// number or label alone; the unit is the record's and is joined by appendUnit (patch files) or shownText
// (hints, lists). The one exception is a free running `frameRate`, whose record has no unit and whose text
// ends in " Hz".
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Parameters {

enum class TextForm {
    display, // two decimals
    exact,   // as many digits as reading back to the same float takes, at least those that patch files show
};

// The text of `value` of parameter `id`. `syncOn` tells whether `sync` is on, in which case `frameRate` shows
// as a division of the bar.
std::string valueToText(int id, float value, bool syncOn, TextForm form);

// The value that a text stands for: a number or a label, with or without its unit, in any letter case.
// Numbers beyond the scale's ends give the end. nullopt when the text is none of these.
std::optional<float> textToValue(int id, std::string_view text, bool syncOn);

// The text with the record's unit behind it as patch files hold it: after one space when the unit begins with
// a letter, directly otherwise.
std::string appendUnit(int id, std::string text);

// The display text with its unit for people, always a space between: "22 kHz", "100.00 %", "Off".
std::string shownText(int id, float value, bool syncOn);

} // namespace Parameters
