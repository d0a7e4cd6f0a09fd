#include "platform/linux/XConnection.h"

#include <sys/socket.h>

#include <bit>
#include <stdexcept>

namespace Platform {

namespace {

std::string displayName() {
    const char* const name = std::getenv("DISPLAY");
    return name && *name ? name : "(DISPLAY is not set)";
}

xcb_screen_t* screenOf(xcb_connection_t* connection, int number) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 1 && number > 0; --number) {
        xcb_screen_next(&screens);
    }
    return screens.data;
}

template <typename Visit>
void forEachVisual(const xcb_screen_t& screen, const Visit& visit) {
    for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem; xcb_depth_next(&depths)) {
        for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem;
             xcb_visualtype_next(&visuals)) {
            visit(int{depths.data->depth}, *visuals.data);
        }
    }
}

bool hasArgbMasks(const xcb_visualtype_t& visual) {
    return visual._class == XCB_VISUAL_CLASS_TRUE_COLOR && visual.red_mask == 0xFF0000 &&
           visual.green_mask == 0xFF00 && visual.blue_mask == 0xFF;
}

// Whether pixels of this depth travel as 32-bit words in this machine's byte order.
bool travelsAsWords(const xcb_setup_t& setup, int depth) {
    constexpr bool kLittleEndian = std::endian::native == std::endian::little;
    const bool sameOrder = (setup.image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST) == kLittleEndian;
    for (auto formats = xcb_setup_pixmap_formats_iterator(&setup); formats.rem; xcb_format_next(&formats)) {
        if (formats.data->depth == depth) {
            return formats.data->bits_per_pixel == 32 && sameOrder;
        }
    }
    return false;
}

} // namespace

XConnection::XConnection() {
    int screen = 0;
    connection_ = xcb_connect(nullptr, &screen);
    if (lost()) {
        xcb_disconnect(connection_);
        throw std::runtime_error("Could not reach the X display " + displayName());
    }
    screen_ = screenOf(connection_, screen);
}

void XConnection::sync() const {
    XReply<xcb_get_input_focus_reply_t>(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

xcb_atom_t XConnection::atom(const std::string& name) const {
    const auto cookie = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const XReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

// Window managers mark it with WM_STATE; without one it is the last before the root.
xcb_window_t XConnection::topLevelOf(xcb_window_t window) const {
    const xcb_atom_t mark = atom("WM_STATE");
    xcb_window_t at = window;
    while (true) {
        const auto markCookie = xcb_get_property(connection_, 0, at, mark, XCB_GET_PROPERTY_TYPE_ANY, 0, 0);
        const auto treeCookie = xcb_query_tree(connection_, at);
        const XReply<xcb_get_property_reply_t> marked(
            xcb_get_property_reply(connection_, markCookie, nullptr));
        const XReply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(connection_, treeCookie, nullptr));
        if (!tree || (marked && marked->type != XCB_ATOM_NONE) || tree->parent == tree->root ||
            tree->parent == XCB_NONE) {
            return at;
        }
        at = tree->parent;
    }
}

bool XConnection::local() const {
    sockaddr_storage peer{};
    socklen_t size = sizeof(peer);
    return getpeername(xcb_get_file_descriptor(connection_), reinterpret_cast<sockaddr*>(&peer), &size) ==
               0 &&
           peer.ss_family == AF_UNIX;
}

xcb_visualid_t XConnection::visualOfDepth(int depth) const {
    xcb_visualid_t found = 0;
    forEachVisual(*screen_, [&](int itsDepth, const xcb_visualtype_t& visual) {
        if (itsDepth == depth && !found && showsArgb(visual.visual_id, depth)) {
            found = visual.visual_id;
        }
    });
    return found;
}

bool XConnection::showsArgb(xcb_visualid_t visual, int depth) const {
    bool shows = false;
    forEachVisual(*screen_, [&](int itsDepth, const xcb_visualtype_t& candidate) {
        shows |= candidate.visual_id == visual && itsDepth == depth && hasArgbMasks(candidate);
    });
    return shows && travelsAsWords(*xcb_get_setup(connection_), depth);
}

} // namespace Platform
