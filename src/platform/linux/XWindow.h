// Platform::Window on X11. Menus and message windows on top of an editor's use more of it than its interface.
#pragma once

#include "platform/Window.h"
#include "platform/linux/XConnection.h"
#include "platform/linux/XCursors.h"
#include "platform/linux/XKeyboard.h"
#include "platform/linux/XSurface.h"

#include <bitset>
#include <optional>
#include <vector>

namespace Platform {

class XWindow final : public Window {
public:
    // Who the window belongs to: a parent that it lies in, or one that it lies above as a dialog.
    struct Place {
        xcb_window_t inside = XCB_NONE;
        xcb_window_t above = XCB_NONE;
        std::string title;
    };

    XWindow(const Place& place, Size size, WindowListener& listener);
    ~XWindow() override;
    XWindow(const XWindow&) = delete;
    XWindow& operator=(const XWindow&) = delete;

    void poll() override;
    void present(const PixelView& picture, std::span<const Rect> dirty) override;
    Size size() const override { return surface_->size(); }
    void resize(Size size) override;
    void setCursor(Cursor cursor) override;
    void capturePointer() override;
    void releasePointer() override;
    void takeKeyboardFocus() override;
    void releaseKeyboardFocus() override;
    NativeWindow nativeId() const override { return window_; }
    bool alive() const override { return alive_; }

    bool usesSharedMemory() const { return surface_->shared(); }
    // Where a place of the window is on the screen; nullopt when the window is gone.
    std::optional<Point> onScreen(Point inWindow) const;
    // Lets go of a button's grab, so that another window of ours can take the pointer.
    void giveUpPointer();

private:
    struct Click {
        xcb_timestamp_t time = 0;
        xcb_button_t button = 0;
        Point at;
        int count = 0;
    };

    void create(const Place& place, Size size);
    void dressTopLevel(const Place& place, Size size);
    void fixSize(Size size);
    void handle(const xcb_generic_event_t& event);
    void buttonPressed(const xcb_button_press_event_t& event);
    void buttonReleased(const xcb_button_release_event_t& event);
    void wheelTurned(const xcb_button_press_event_t& event);
    void pointerLeft(const xcb_leave_notify_event_t& event);
    void keyPressed(const xcb_key_press_event_t& event);
    void keyReleased(const xcb_key_release_event_t& event);
    void handToHost(xcb_key_press_event_t event);
    void configured(const xcb_configure_notify_event_t& event);
    void lose();
    int countClicks(const xcb_button_press_event_t& event);

    XConnection connection_;
    WindowListener& listener_;
    xcb_window_t parent_ = XCB_NONE;
    xcb_window_t window_ = XCB_NONE;
    xcb_colormap_t colours_ = XCB_NONE;
    int depth_ = 0;
    XKeyboard keyboard_;
    XCursors cursors_;
    std::unique_ptr<XSurface> surface_;
    xcb_atom_t deleteWindow_ = XCB_NONE;
    Cursor cursor_ = Cursor::arrow;
    std::bitset<256> buttons_;      // held
    std::bitset<256> handedToHost_; // keys whose press went there
    Click lastClick_;
    xcb_timestamp_t lastTime_ = XCB_CURRENT_TIME;
    std::optional<xcb_window_t> focusBefore_;
    bool alive_ = true;
    // The listener may destroy the window while poll() runs: who holds a weak pointer to this sees it.
    std::shared_ptr<char> life_ = std::make_shared<char>();
};

} // namespace Platform
