// A connection to the X server: who holds it closes it. Every window, menu and clipboard has its own, so that
// the host's and the other instances' are never touched.
#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace Platform {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};

// Replies, events and errors are the receiver's to free.
template <typename T>
using XReply = std::unique_ptr<T, FreeReply>;

class XConnection {
public:
    // To the display that the environment names. Throws std::runtime_error when it cannot be reached.
    XConnection();
    ~XConnection() { xcb_disconnect(connection_); }
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;

    operator xcb_connection_t*() const { return connection_; }
    const xcb_screen_t& screen() const { return *screen_; }

    bool lost() const { return xcb_connection_has_error(connection_) != 0; }
    // Waits until the server has done everything asked of it so far.
    void sync() const;

    XReply<xcb_generic_event_t> nextEvent() const {
        return XReply<xcb_generic_event_t>(xcb_poll_for_event(connection_));
    }

    xcb_atom_t atom(const std::string& name) const;

    // The program's window that this one lies in, as window managers and desktops know it.
    xcb_window_t topLevelOf(xcb_window_t window) const;

    // Both on one machine: then they can share memory.
    bool local() const;

    // One that shows 0xAARRGGBB pixels as they are; 0 when the screen has none of this depth.
    xcb_visualid_t visualOfDepth(int depth) const;
    bool showsArgb(xcb_visualid_t visual, int depth) const;

private:
    xcb_connection_t* connection_;
    xcb_screen_t* screen_ = nullptr;
};

// The kind of an event. Whether another client has sent it or the server does not matter here.
inline int eventKind(const xcb_generic_event_t& event) {
    return event.response_type & 0x7F;
}

template <typename T>
const T& eventAs(const xcb_generic_event_t& event) {
    return reinterpret_cast<const T&>(event);
}

} // namespace Platform
