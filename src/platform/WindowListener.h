// What happens in a window, told to whoever opened it. All calls come on the main thread: on Linux from
// within Window::poll(), on Windows also whenever the host lets messages through. A listener may destroy the
// window from within any call.
#pragma once

#include "platform/Keys.h"
#include "platform/Pixels.h"

namespace Platform {

enum class MouseButton { left, middle, right, back, forward };

struct MouseEvent {
    Point at; // in the window; outside while a button is held
    Modifiers modifiers;
    MouseButton button = MouseButton::left; // of mouseDown and mouseUp
    int clicks = 1;                         // 2 for a double click, 3 for a triple one
};

struct WheelEvent {
    Point at;
    Modifiers modifiers;
    double right = 0; // in notches
    double up = 0;
};

class WindowListener {
public:
    virtual ~WindowListener() = default;

    // From mouseDown to mouseUp moves are reported wherever the pointer is.
    virtual void mouseDown(const MouseEvent&) {}
    virtual void mouseUp(const MouseEvent&) {}
    virtual void mouseMoved(const MouseEvent&) {}
    virtual void mouseLeft() {}
    virtual void mouseWheel(const WheelEvent&) {}
    // Buttons that are down will not be reported up: a menu or another window has taken the pointer.
    virtual void mouseCaptureLost() {}

    // True when the key was of use. Any other is handed to the host's window.
    virtual bool keyDown(const KeyEvent&) { return false; }
    // Its own keyDown has decided who gets it.
    virtual void keyUp(const KeyEvent&) {}
    virtual void focusChanged(bool /*focused*/) {}

    // Somebody else has changed the size. What was shown is gone: present all of it again.
    virtual void resized(Size) {}

    // Windows alone: poll() has not been called for a while, as with hosts that know no idle time for editors.
    // Comes again and again until it is called.
    virtual void hostIsSilent() {}

    // The user wants a top-level window closed.
    virtual void closeRequested() {}
    // The host has destroyed the window, or the display is gone. From now on the window does nothing.
    virtual void windowLost() {}
};

} // namespace Platform
