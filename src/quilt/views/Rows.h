// Rows that several view types share: one word means the same wherever it stands.
#pragma once

#include "quilt/Property.h"

namespace Quilt::Rows {

using enum PropertyKind;

inline constexpr const char* kStates = "normal hovered pressed checked disabled";

inline constexpr Property kBox[] = {
    {"background", color, "", "Fills the bounds."},
    {"rounded", number, "0", "Radius of the corners, in units.", "", 0, 1000},
    {"frame", color, "", "A line within the edge of the bounds."},
    {"frameWidth", number, "1", "Its width, in units.", "", 0, 100},
};

inline constexpr Property kText[] = {
    {"text", text, "", "What is written."},
    {"font", font, "", "The font; without one the framework's sans-serif."},
    {"color", color, "", "Of the text, in place of the font's own."},
    {"align", align, "center middle", "Where the text stands in the bounds."},
    {"offset", offset, "", "Moves the text."},
};

inline constexpr Property kAction[] = {
    {"action", action, "", "What is done. Its state decides whether the control is enabled and checked."},
    {"params", params, "", "The parameters of `action`."},
};

inline constexpr Property kMenu[] = {
    {"menuAction", action, "", "What a click with the right button does."},
    {"menuParams", params, "", "The parameters of `menuAction`."},
};

inline constexpr Property kFocus[] = {
    {"focusable", boolean, "true", "Whether the tab key comes to the control."},
};

// Of controls that change one variable by dragging, wheel and keys.
inline constexpr Property kValue[] = {
    {"variable", variable, "", "The variable that is shown and changed."},
    {"range", range, "{ 0, 1 }", "Its values at both ends."},
    {"steps", integer, "0", "How many values there are, both ends included; 0: any.", "", 0, 1000000},
    {"default", number, "",
     "The value that a double click sets; without it that of the variable of the same name with `.default` "
     "behind it."},
    {"fine", number, "0.1", "How much slower the value moves with the shift key.", "", 0.0001, 1},
    {"wheelStep", number, "0.02", "What a notch of the wheel and an arrow key move, as a part of the range.",
     "", 0, 1},
    {"dragLength", number, "150", "How far the mouse moves for the whole range, in units.", "", 1, 10000},
    {"textVariable", variable, "",
     "The variable that takes a typed value: the enter key or a digit opens a field."},
};

inline constexpr Property kOrientation[] = {
    {"orientation", choice, "vertical", "Which way it goes.", "vertical horizontal"},
};

} // namespace Quilt::Rows
