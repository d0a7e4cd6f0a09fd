// A window of the editor's: inside one of the plug-in host's, or on its own for the command. It shows pixels
// and reports events; it draws nothing and knows nothing of views. Each has a connection to the display of
// its own, so that instances in one host do not meet. For the main thread only.
#pragma once

#include "platform/Pixels.h"
#include "platform/WindowListener.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace Platform {

// An X11 window id, or a HWND. 0: none.
using NativeWindow = std::uintptr_t;

enum class Cursor {
    arrow,
    hand,
    text,
    crosshair,
    move,
    resizeHorizontal,
    resizeVertical,
    wait,
    forbidden,
    hidden,
};
inline constexpr int kCursorCount = 10;

class Window {
public:
    // Throw std::runtime_error that says why no window can be had (no display, no such parent). The listener
    // must outlive the window. Sizes are in pixels, at least 1. The window is visible at once, and black.
    static std::unique_ptr<Window> openInside(NativeWindow parent, Size size, WindowListener& listener);
    static std::unique_ptr<Window> openTopLevel(const std::string& title, Size size,
                                                WindowListener& listener);

    virtual ~Window() = default;

    // Tells the listener what has happened since the last call, and returns at once. This is the window's
    // only clock: the host's idle calls drive it.
    virtual void poll() = 0;

    // Shows the dirty parts of `picture`, which covers the window from its top left corner. The window keeps
    // its own copy and repairs exposed parts from it.
    virtual void present(const PixelView& picture, std::span<const Rect> dirty) = 0;

    virtual Size size() const = 0;
    // The window's own size; the host's window around it is the host's business. What was shown is gone.
    virtual void resize(Size size) = 0;

    virtual void setCursor(Cursor cursor) = 0;

    // Keeps the pointer's events here although no button is down. Releasing, or another window's capture,
    // ends it (the latter with mouseCaptureLost).
    virtual void capturePointer() = 0;
    virtual void releasePointer() = 0;

    // Keys come here from now on; releasing gives them back to the host's window.
    virtual void takeKeyboardFocus() = 0;
    virtual void releaseKeyboardFocus() = 0;

    virtual NativeWindow nativeId() const = 0;
    // False once the listener has been told windowLost.
    virtual bool alive() const = 0;
};

} // namespace Platform
