// The editor as the adapter of a plug-in interface drives it. Everything is the main thread's.
#pragma once

#include "platform/Keys.h"

#include <exception>
#include <memory>

namespace Shell {

class EffectInstance;

// Thrown when the user has called something off: nothing is to be said about it.
class UserCancelled : public std::exception {
public:
    const char* what() const noexcept override { return "Cancelled"; }
};

struct EditorSize {
    int width = 0;
    int height = 0;
};

class Editor {
public:
    virtual ~Editor() = default; // closes

    virtual EditorSize size() = 0;          // in pixels; hosts ask before they open
    virtual void open(void* parent) = 0;    // what the host calls a window: on Linux an X11 window id
    virtual void close() noexcept = 0;
    virtual void idle() = 0;                // the only clock, every 20 to 50 ms
    virtual bool keyDown(const Platform::KeyEvent&) { return false; } // false: the key is the host's
    virtual bool keyUp(const Platform::KeyEvent&) { return false; }
};

// Makes the editor of an instance, not open yet. May throw.
using EditorFactory = std::unique_ptr<Editor> (*)(EffectInstance&);

} // namespace Shell
