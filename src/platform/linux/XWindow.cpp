#include "platform/linux/XWindow.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

namespace Platform {

namespace {

constexpr std::uint32_t kEvents =
    XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_BUTTON_PRESS |
    XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_LEAVE_WINDOW |
    XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_FOCUS_CHANGE;
constexpr std::uint16_t kPointerEvents =
    XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION;
constexpr int kMostPixelsAcross = 32767; // what the protocol's coordinates hold

Size bounded(Size size) {
    return {std::clamp(size.width, 1, kMostPixelsAcross), std::clamp(size.height, 1, kMostPixelsAcross)};
}

} // namespace

XWindow::XWindow(const Place& place, Size size, WindowListener& listener)
    : listener_(listener), parent_(place.inside), keyboard_(connection_), cursors_(connection_) {
    create(place, bounded(size));
    surface_ = std::make_unique<XSurface>(connection_, window_, depth_, bounded(size));
    if (!place.inside) {
        dressTopLevel(place, bounded(size));
    }
    cursors_.show(window_, cursor_);
    xcb_map_window(connection_, window_);
    connection_.sync();
}

XWindow::~XWindow() {
    surface_.reset();
    if (alive_) {
        releaseKeyboardFocus();
        xcb_destroy_window(connection_, window_);
    }
    if (colours_) {
        xcb_free_colormap(connection_, colours_);
    }
    // The host may destroy its own window as soon as we return.
    connection_.sync();
}

// The visual is the parent's when that shows our pixels, for a compositing desktop mixes depths badly; else
// one that does.
void XWindow::create(const Place& place, Size size) {
    constexpr int kUsualDepth = 24;
    const xcb_screen_t& screen = connection_.screen();
    xcb_visualid_t visual = screen.root_visual;
    depth_ = screen.root_depth;
    if (place.inside) {
        const auto geometryCookie = xcb_get_geometry(connection_, place.inside);
        const auto attributesCookie = xcb_get_window_attributes(connection_, place.inside);
        const XReply<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(connection_, geometryCookie, nullptr));
        const XReply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(connection_, attributesCookie, nullptr));
        if (!geometry || !attributes) {
            throw std::runtime_error("The host's window does not exist");
        }
        visual = attributes->visual;
        depth_ = geometry->depth;
    }
    if (!connection_.showsArgb(visual, depth_)) {
        depth_ = kUsualDepth;
        visual = connection_.visualOfDepth(kUsualDepth);
    }
    if (!visual) {
        throw std::runtime_error("The X display does not show colours of 24 bits");
    }
    colours_ = xcb_generate_id(connection_);
    xcb_create_colormap(connection_, XCB_COLORMAP_ALLOC_NONE, colours_, screen.root, visual);
    window_ = xcb_generate_id(connection_);
    constexpr std::uint32_t kMask =
        XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_BIT_GRAVITY | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP;
    const std::array<std::uint32_t, 5> values{XCB_BACK_PIXMAP_NONE, 0, XCB_GRAVITY_NORTH_WEST, kEvents,
                                              colours_};
    const XReply<xcb_generic_error_t> error(xcb_request_check(
        connection_, xcb_create_window_checked(connection_, static_cast<std::uint8_t>(depth_), window_,
                                               place.inside ? place.inside : screen.root, 0, 0,
                                               static_cast<std::uint16_t>(size.width),
                                               static_cast<std::uint16_t>(size.height), 0,
                                               XCB_WINDOW_CLASS_INPUT_OUTPUT, visual, kMask, values.data())));
    if (error || connection_.lost()) {
        throw std::runtime_error("The X server refused a window");
    }
    // Hosts that embed by the XEmbed protocol want to be told that the window is ready.
    constexpr std::array<std::uint32_t, 2> kVersionAndMapped{0, 1};
    const xcb_atom_t info = connection_.atom("_XEMBED_INFO");
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, info, info, 32,
                        static_cast<std::uint32_t>(kVersionAndMapped.size()), kVersionAndMapped.data());
}

void XWindow::dressTopLevel(const Place& place, Size size) {
    const auto setText = [&](xcb_atom_t property, xcb_atom_t type, std::string_view text) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, property, type, 8,
                            static_cast<std::uint32_t>(text.size()), text.data());
    };
    const auto setAtom = [&](const char* property, xcb_atom_t value) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, connection_.atom(property),
                            XCB_ATOM_ATOM, 32, 1, &value);
    };
    setText(connection_.atom("_NET_WM_NAME"), connection_.atom("UTF8_STRING"), place.title);
    setText(XCB_ATOM_WM_NAME, XCB_ATOM_STRING, place.title);
    setText(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, std::string_view("murmelon\0Murmelon", 18));
    deleteWindow_ = connection_.atom("WM_DELETE_WINDOW");
    setAtom("WM_PROTOCOLS", deleteWindow_);
    if (place.above) {
        const xcb_window_t above = connection_.topLevelOf(place.above);
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_TRANSIENT_FOR,
                            XCB_ATOM_WINDOW, 32, 1, &above);
        setAtom("_NET_WM_WINDOW_TYPE", connection_.atom("_NET_WM_WINDOW_TYPE_DIALOG"));
    }
    fixSize(size);
}

// The editor draws one size only, so the least and the largest size that the user can give it are this one.
void XWindow::fixSize(Size size) {
    constexpr std::uint32_t kMinAndMaxSize = (1U << 4) | (1U << 5);
    std::array<std::uint32_t, 18> hints{kMinAndMaxSize};
    hints[5] = hints[7] = static_cast<std::uint32_t>(size.width);
    hints[6] = hints[8] = static_cast<std::uint32_t>(size.height);
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, static_cast<std::uint32_t>(hints.size()), hints.data());
}

void XWindow::present(const PixelView& picture, std::span<const Rect> dirty) {
    if (alive_) {
        surface_->present(picture, dirty);
        xcb_flush(connection_);
    }
}

void XWindow::resize(Size wanted) {
    const Size size = bounded(wanted);
    if (!alive_ || size == surface_->size()) {
        return;
    }
    surface_ = std::make_unique<XSurface>(connection_, window_, depth_, size);
    if (!parent_) {
        fixSize(size);
    }
    const std::array<std::uint32_t, 2> values{static_cast<std::uint32_t>(size.width),
                                              static_cast<std::uint32_t>(size.height)};
    xcb_configure_window(connection_, window_, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
    xcb_flush(connection_);
}

void XWindow::setCursor(Cursor cursor) {
    if (alive_ && cursor != cursor_) {
        cursor_ = cursor;
        cursors_.show(window_, cursor);
        xcb_flush(connection_);
    }
}

void XWindow::capturePointer() {
    if (!alive_) {
        return;
    }
    const auto cookie = xcb_grab_pointer(connection_, 0, window_, kPointerEvents, XCB_GRAB_MODE_ASYNC,
                                         XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
    xcb_discard_reply(connection_, cookie.sequence);
    xcb_flush(connection_);
}

void XWindow::releasePointer() {
    xcb_ungrab_pointer(connection_, XCB_CURRENT_TIME);
    xcb_flush(connection_);
}

void XWindow::giveUpPointer() {
    xcb_ungrab_pointer(connection_, XCB_CURRENT_TIME);
    connection_.sync();
    if (buttons_.any()) {
        buttons_.reset();
        listener_.mouseCaptureLost();
    }
}

void XWindow::takeKeyboardFocus() {
    if (!alive_) {
        return;
    }
    const XReply<xcb_get_input_focus_reply_t> now(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    if (now && now->focus != window_) {
        focusBefore_ = now->focus;
    }
    xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_PARENT, window_, lastTime_);
    xcb_flush(connection_);
}

void XWindow::releaseKeyboardFocus() {
    if (!alive_ || !focusBefore_) {
        return;
    }
    const XReply<xcb_get_input_focus_reply_t> now(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    if (now && now->focus == window_) { // else the user has gone elsewhere since
        xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_PARENT, *focusBefore_, XCB_CURRENT_TIME);
        xcb_flush(connection_);
    }
    focusBefore_.reset();
}

std::optional<Point> XWindow::onScreen(Point inWindow) const {
    const auto cookie = xcb_translate_coordinates(connection_, window_, connection_.screen().root,
                                                  static_cast<std::int16_t>(inWindow.x),
                                                  static_cast<std::int16_t>(inWindow.y));
    const XReply<xcb_translate_coordinates_reply_t> reply(
        xcb_translate_coordinates_reply(connection_, cookie, nullptr));
    return reply ? std::optional(Point{reply->dst_x, reply->dst_y}) : std::nullopt;
}

void XWindow::lose() {
    if (std::exchange(alive_, false)) {
        listener_.windowLost();
    }
}

std::unique_ptr<Window> Window::openInside(NativeWindow parent, Size size, WindowListener& listener) {
    if (parent == 0) {
        throw std::runtime_error("The host gave no window");
    }
    XWindow::Place place;
    place.inside = static_cast<xcb_window_t>(parent);
    return std::make_unique<XWindow>(place, size, listener);
}

std::unique_ptr<Window> Window::openTopLevel(const std::string& title, Size size, WindowListener& listener) {
    XWindow::Place place;
    place.title = title;
    return std::make_unique<XWindow>(place, size, listener);
}

} // namespace Platform
