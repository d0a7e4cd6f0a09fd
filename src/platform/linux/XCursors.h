// The pointer's shapes: of the desktop's theme where libxcb-cursor is installed, else of the server's own
// font.
#pragma once

#include "platform/Window.h"
#include "platform/linux/XConnection.h"

#include <array>

namespace Platform {

class XCursors {
public:
    // The connection must outlive the cursors.
    explicit XCursors(const XConnection& connection) : connection_(connection) {}

    void show(xcb_window_t window, Cursor cursor);

private:
    xcb_cursor_t load(Cursor cursor);
    xcb_cursor_t themed(const char* name);
    xcb_cursor_t fromFont(std::uint16_t glyph);
    xcb_cursor_t invisible();

    const XConnection& connection_;
    std::array<xcb_cursor_t, kCursorCount> loaded_{}; // the server frees them with the connection
};

} // namespace Platform
