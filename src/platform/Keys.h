// Keys as editors meet them, whether the window system reports them or the plug-in host.
#pragma once

#include <string>

namespace Platform {

// The numbers are those that VST 2 hosts use for virtual keys.
enum class VirtualKey : int {
    none = 0,
    back = 1,
    tab,
    clear,
    enter, // the main one
    pause,
    escape,
    space,
    next,
    end,
    home,
    left,
    up,
    right,
    down,
    pageUp,
    pageDown,
    select,
    print,
    numpadEnter,
    snapshot,
    insert,
    del,
    help,
    numpad0 = 24,
    numpad9 = 33,
    numpadMultiply = 34,
    numpadAdd,
    numpadSeparator,
    numpadSubtract,
    numpadDecimal,
    numpadDivide,
    f1 = 40,
    f12 = 51,
    numLock = 52,
    scrollLock,
    shift,
    control,
    alt,
};

struct Modifiers {
    bool shift = false;
    bool control = false;
    bool alt = false;
    bool super = false; // the key with a logo

    bool operator==(const Modifiers&) const = default;
};

struct KeyEvent {
    VirtualKey key = VirtualKey::none; // none for keys that only have a character
    // The character on the key, lower case and without control: what a shortcut is compared with. 0: none.
    char32_t character = 0;
    std::string text; // UTF-8, what typing the key writes; empty for keys that write nothing
    Modifiers modifiers;
    bool repeated = false; // held down
};

} // namespace Platform
