// What hands do to a surface: events as the window hands them to the framework.
#pragma once

#include "quilt/Geometry.h"

namespace Quilt {

struct Modifiers {
    bool shift = false;
    bool control = false; // the command key where there is one
    bool alt = false;

    bool operator==(const Modifiers&) const = default;
};

enum class MouseButton { left, middle, right };

struct MouseEvent {
    Point at; // pixels; of the surface where the window calls, of the view's own top left where a view is
              // called
    MouseButton button = MouseButton::left; // of moves: the one that is held, if any
    Modifiers modifiers;
    int clicks = 1; // 2: the second press of a double click
};

struct WheelEvent {
    Point at;
    double steps = 0; // notches; positive: away from the user
    Modifiers modifiers;
};

enum class Key {
    character, // see KeyEvent::character
    enter,
    escape,
    tab,
    backspace,
    del,
    left,
    right,
    up,
    down,
    pageUp,
    pageDown,
    home,
    end,
};

struct KeyEvent {
    Key key = Key::character;
    char32_t character = 0; // as typed, shift and layout applied; 0 for the other keys
    Modifiers modifiers;
};

enum class Cursor { arrow, hand, text, vertical, horizontal, move, cross, forbidden };

} // namespace Quilt
