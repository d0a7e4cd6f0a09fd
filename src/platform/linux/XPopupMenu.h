// Pop-up menus on X11: windows that no window manager sees, with pointer and keyboard held until the user
// decides.
#pragma once

#include "platform/PopupMenu.h"
#include "platform/linux/MenuPane.h"
#include "platform/linux/XConnection.h"
#include "platform/linux/XKeyboard.h"
#include "platform/linux/XSurface.h"

#include <chrono>

namespace Platform {

class XWindow;

class XPopupMenu final : public PopupMenu {
public:
    XPopupMenu(XWindow& owner, Rect anchor, std::vector<MenuEntry> entries, TextPainter& painter,
               Chosen chosen);
    ~XPopupMenu() override;
    XPopupMenu(const XPopupMenu&) = delete;
    XPopupMenu& operator=(const XPopupMenu&) = delete;

    bool poll() override;

private:
    using Clock = std::chrono::steady_clock;

    struct Level {
        MenuPane pane;
        Rect place; // on the screen
        xcb_window_t window = XCB_NONE;
        std::unique_ptr<XSurface> surface;
        std::optional<std::size_t> highlighted;

        Point inPane(Point onScreen) const { return {onScreen.x - place.x, onScreen.y - place.y}; }
    };

    Rect placeFor(Size size, const Rect& anchor) const;
    void openLevel(const std::vector<MenuEntry>& entries, const Rect& place);
    void openSubmenu();
    void closeLevelsAbove(std::size_t count);
    void grab();
    void handle(const xcb_generic_event_t& event);
    void pointerMoved(Point onScreen);
    void buttonPressed(const xcb_button_press_event_t& event);
    void buttonReleased(Point onScreen);
    void keyPressed(const KeyEvent& key);
    void highlight(std::size_t level, std::optional<std::size_t> entry);
    void choose();
    void scrollUnderPointer();
    void draw(Level& level);
    Level* levelAt(Point onScreen);

    XConnection connection_;
    XKeyboard keyboard_;
    TextPainter& painter_;
    const std::vector<MenuEntry> entries_;
    Chosen chosen_;
    Size screen_;
    xcb_visualid_t visual_;
    xcb_colormap_t colours_;
    std::vector<std::unique_ptr<Level>> levels_;
    bool pointerGrabbed_ = false;
    bool keyboardGrabbed_ = false;
    Clock::time_point grabDeadline_;
    Clock::time_point lastScroll_{};
    std::optional<Point> pointer_;
    std::optional<Point> opened_; // where the pointer was first
    bool armed_ = false;          // a release chooses: the user has pressed, or moved, since the menu opened
    bool done_ = false;
    std::optional<int> answer_;
};

} // namespace Platform
