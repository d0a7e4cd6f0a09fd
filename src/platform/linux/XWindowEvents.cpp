// The half of XWindow that turns X events into the listener's calls.
#include "platform/linux/XWindow.h"

#include <cmath>

namespace Platform {

namespace {

constexpr xcb_timestamp_t kDoubleClickMilliseconds = 400;
constexpr int kDoubleClickPixels = 5;

bool isWheel(xcb_button_t button) {
    return button >= 4 && button <= 7;
}

std::optional<MouseButton> buttonOf(xcb_button_t button) {
    switch (button) {
    case 1:
        return MouseButton::left;
    case 2:
        return MouseButton::middle;
    case 3:
        return MouseButton::right;
    case 8:
        return MouseButton::back;
    case 9:
        return MouseButton::forward;
    default:
        return std::nullopt;
    }
}

template <typename Event>
Point placeOf(const Event& event) {
    return {event.event_x, event.event_y};
}

template <typename Event>
MouseEvent mouseEvent(const Event& event) {
    MouseEvent mouse;
    mouse.at = placeOf(event);
    mouse.modifiers = modifiersOf(event.state);
    return mouse;
}

} // namespace

void XWindow::poll() {
    const std::weak_ptr<char> life = life_;
    std::vector<XReply<xcb_generic_event_t>> events;
    while (auto event = connection_.nextEvent()) {
        // Of moves that follow each other only the last counts.
        if (!events.empty() && eventKind(*event) == XCB_MOTION_NOTIFY &&
            eventKind(*events.back()) == XCB_MOTION_NOTIFY) {
            events.pop_back();
        }
        events.push_back(std::move(event));
    }
    for (const auto& event : events) {
        if (!alive_) {
            return;
        }
        handle(*event);
        if (life.expired()) {
            return;
        }
    }
    if (connection_.lost()) {
        lose();
        return;
    }
    xcb_flush(connection_);
}

void XWindow::handle(const xcb_generic_event_t& event) {
    if (keyboard_.takeEvent(event)) {
        return;
    }
    switch (eventKind(event)) {
    case XCB_EXPOSE: {
        const auto& expose = eventAs<xcb_expose_event_t>(event);
        surface_->show({expose.x, expose.y, expose.width, expose.height});
        break;
    }
    case XCB_BUTTON_PRESS:
        buttonPressed(eventAs<xcb_button_press_event_t>(event));
        break;
    case XCB_BUTTON_RELEASE:
        buttonReleased(eventAs<xcb_button_release_event_t>(event));
        break;
    case XCB_MOTION_NOTIFY:
        listener_.mouseMoved(mouseEvent(eventAs<xcb_motion_notify_event_t>(event)));
        break;
    case XCB_LEAVE_NOTIFY:
        pointerLeft(eventAs<xcb_leave_notify_event_t>(event));
        break;
    case XCB_KEY_PRESS:
        keyPressed(eventAs<xcb_key_press_event_t>(event));
        break;
    case XCB_KEY_RELEASE:
        keyReleased(eventAs<xcb_key_release_event_t>(event));
        break;
    case XCB_FOCUS_IN:
    case XCB_FOCUS_OUT: {
        const auto& focus = eventAs<xcb_focus_in_event_t>(event);
        // The pointer's own comings and goings, and a menu's short hold on the keyboard, are no change.
        if (focus.detail != XCB_NOTIFY_DETAIL_POINTER && focus.mode != XCB_NOTIFY_MODE_GRAB &&
            focus.mode != XCB_NOTIFY_MODE_UNGRAB) {
            keyboard_.forgetKeys();
            listener_.focusChanged(eventKind(event) == XCB_FOCUS_IN);
        }
        break;
    }
    case XCB_CONFIGURE_NOTIFY:
        configured(eventAs<xcb_configure_notify_event_t>(event));
        break;
    case XCB_CLIENT_MESSAGE: {
        const auto& message = eventAs<xcb_client_message_event_t>(event);
        if (deleteWindow_ && message.format == 32 && message.data.data32[0] == deleteWindow_) {
            listener_.closeRequested();
        }
        break;
    }
    case XCB_DESTROY_NOTIFY:
        lose();
        break;
    default: // errors too: each is of a request on something that has gone meanwhile
        break;
    }
}

void XWindow::buttonPressed(const xcb_button_press_event_t& event) {
    lastTime_ = event.time;
    if (isWheel(event.detail)) {
        wheelTurned(event);
        return;
    }
    const auto button = buttonOf(event.detail);
    if (!button) {
        return;
    }
    buttons_.set(event.detail);
    MouseEvent mouse = mouseEvent(event);
    mouse.button = *button;
    mouse.clicks = countClicks(event);
    listener_.mouseDown(mouse);
}

void XWindow::buttonReleased(const xcb_button_release_event_t& event) {
    const auto button = buttonOf(event.detail);
    if (!button || !buttons_[event.detail]) { // a press that another window had
        return;
    }
    buttons_.reset(event.detail);
    const std::weak_ptr<char> life = life_;
    MouseEvent mouse = mouseEvent(event);
    mouse.button = *button;
    mouse.clicks = lastClick_.count;
    listener_.mouseUp(mouse);
    if (life.expired()) {
        return;
    }
    const Size area = size();
    if (buttons_.none() && !Rect{0, 0, area.width, area.height}.contains(mouse.at)) {
        listener_.mouseLeft();
    }
}

void XWindow::wheelTurned(const xcb_button_press_event_t& event) {
    WheelEvent wheel;
    wheel.at = placeOf(event);
    wheel.modifiers = modifiersOf(event.state);
    wheel.up = event.detail == 4 ? 1 : event.detail == 5 ? -1 : 0;
    wheel.right = event.detail == 7 ? 1 : event.detail == 6 ? -1 : 0;
    listener_.mouseWheel(wheel);
}

// While a button is held the pointer is still ours; its release tells then.
void XWindow::pointerLeft(const xcb_leave_notify_event_t& event) {
    if (buttons_.none() && event.mode == XCB_NOTIFY_MODE_NORMAL) {
        listener_.mouseLeft();
    }
}

int XWindow::countClicks(const xcb_button_press_event_t& event) {
    const bool again = event.detail == lastClick_.button &&
                       event.time - lastClick_.time <= kDoubleClickMilliseconds &&
                       std::abs(event.event_x - lastClick_.at.x) <= kDoubleClickPixels &&
                       std::abs(event.event_y - lastClick_.at.y) <= kDoubleClickPixels;
    lastClick_ = {event.time, event.detail, placeOf(event), again ? lastClick_.count + 1 : 1};
    return lastClick_.count;
}

void XWindow::keyPressed(const xcb_key_press_event_t& event) {
    lastTime_ = event.time;
    const std::weak_ptr<char> life = life_;
    const bool used = listener_.keyDown(keyboard_.pressed(event));
    if (life.expired()) {
        return;
    }
    handedToHost_.set(event.detail, !used);
    if (!used) {
        handToHost(event);
    }
}

// The one who had the press gets the release.
void XWindow::keyReleased(const xcb_key_release_event_t& event) {
    const KeyEvent key = keyboard_.released(event);
    if (handedToHost_[event.detail]) {
        handedToHost_.reset(event.detail);
        handToHost(event);
        return;
    }
    listener_.keyUp(key);
}

// Goes to the nearest window around ours that listens to keys.
void XWindow::handToHost(xcb_key_press_event_t event) {
    if (!parent_ || !alive_) {
        return;
    }
    const std::uint32_t mask = eventKind(reinterpret_cast<const xcb_generic_event_t&>(event)) == XCB_KEY_PRESS
                                   ? XCB_EVENT_MASK_KEY_PRESS
                                   : XCB_EVENT_MASK_KEY_RELEASE;
    event.event = parent_;
    event.child = window_;
    xcb_send_event(connection_, 1, parent_, mask, reinterpret_cast<const char*>(&event));
}

void XWindow::configured(const xcb_configure_notify_event_t& event) {
    const Size now{event.width, event.height};
    if (now == size()) {
        return;
    }
    // An answer to an older wish of ours may come after a newer one: only what the window is now counts.
    const XReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window_), nullptr));
    if (!geometry || Size{geometry->width, geometry->height} == size()) {
        return;
    }
    const Size actual{geometry->width, geometry->height};
    surface_ = std::make_unique<XSurface>(connection_, window_, depth_, actual);
    listener_.resized(actual);
}

} // namespace Platform
