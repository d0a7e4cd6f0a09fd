#include "platform/linux/XPopupMenu.h"

#include "platform/linux/XWindow.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace Platform {

namespace {

using namespace std::chrono_literals;

constexpr int kDepth = 24;
constexpr auto kGrabPatience = 1s;
constexpr auto kScrollInterval = 30ms;
constexpr int kArmingPixels = 4;
constexpr std::uint16_t kPointerEvents =
    XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION;

template <typename Event>
Point onScreen(const Event& event) {
    return {event.root_x, event.root_y};
}

} // namespace

XPopupMenu::XPopupMenu(XWindow& owner, Rect anchor, std::vector<MenuEntry> entries, TextPainter& painter,
                       Chosen chosen)
    : keyboard_(connection_), painter_(painter), entries_(std::move(entries)),
      chosen_(std::move(chosen)), screen_{connection_.screen().width_in_pixels,
                                          connection_.screen().height_in_pixels},
      visual_(connection_.visualOfDepth(kDepth)), colours_(xcb_generate_id(connection_)),
      grabDeadline_(Clock::now() + kGrabPatience) {
    const auto origin = owner.onScreen({anchor.x, anchor.y});
    if (!origin || !visual_) {
        throw std::runtime_error("There is no window for a menu");
    }
    xcb_create_colormap(connection_, XCB_COLORMAP_ALLOC_NONE, colours_, connection_.screen().root, visual_);
    const Rect anchorOnScreen{origin->x, origin->y, anchor.width, anchor.height};
    owner.giveUpPointer();
    openLevel(entries_, anchorOnScreen);
    grab();
}

XPopupMenu::~XPopupMenu() {
    closeLevelsAbove(0);
    xcb_ungrab_pointer(connection_, XCB_CURRENT_TIME);
    xcb_ungrab_keyboard(connection_, XCB_CURRENT_TIME);
    connection_.sync();
}

bool XPopupMenu::poll() {
    if (done_) {
        return false;
    }
    grab();
    while (!done_) {
        const auto event = connection_.nextEvent();
        if (!event) {
            break;
        }
        handle(*event);
    }
    scrollUnderPointer();
    const bool noGrab = !pointerGrabbed_ && Clock::now() > grabDeadline_;
    if (connection_.lost() || noGrab) { // without the pointer nothing could ever close it
        done_ = true;
    }
    xcb_flush(connection_);
    if (!done_) {
        return true;
    }
    closeLevelsAbove(0);
    xcb_ungrab_pointer(connection_, XCB_CURRENT_TIME);
    xcb_ungrab_keyboard(connection_, XCB_CURRENT_TIME);
    connection_.sync();
    const Chosen chosen = std::exchange(chosen_, nullptr);
    const std::optional<int> answer = answer_;
    chosen(answer); // may destroy this menu
    return false;
}

// Below the anchor; above it when there is more room; in any case on the screen.
Rect XPopupMenu::placeFor(Size size, const Rect& anchor) const {
    int y = anchor.y + anchor.height;
    if (y + size.height > screen_.height && anchor.y - size.height >= 0) {
        y = anchor.y - size.height;
    }
    return {std::clamp(anchor.x, 0, std::max(0, screen_.width - size.width)),
            std::clamp(y, 0, std::max(0, screen_.height - size.height)), size.width, size.height};
}

void XPopupMenu::openLevel(const std::vector<MenuEntry>& entries, const Rect& anchor) {
    auto level = std::make_unique<Level>(Level{MenuPane(entries, painter_, screen_.height), {}, {}, {}, {}});
    const Size size = level->pane.size();
    level->place = placeFor(size, anchor);
    if (!levels_.empty()) { // beside its entry, on the side that has room
        const Rect& parent = levels_.back()->place;
        const bool right = parent.x + parent.width + size.width <= screen_.width;
        level->place.x = right ? parent.x + parent.width - 1 : std::max(0, parent.x - size.width + 1);
        level->place.y = std::clamp(anchor.y, 0, std::max(0, screen_.height - size.height));
    }
    level->window = xcb_generate_id(connection_);
    constexpr std::uint32_t kMask = XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT |
                                    XCB_CW_SAVE_UNDER | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP;
    const std::array<std::uint32_t, 6> values{XCB_BACK_PIXMAP_NONE,    0,       1, 1,
                                              XCB_EVENT_MASK_EXPOSURE, colours_};
    xcb_create_window(connection_, kDepth, level->window, connection_.screen().root,
                      static_cast<std::int16_t>(level->place.x), static_cast<std::int16_t>(level->place.y),
                      static_cast<std::uint16_t>(size.width), static_cast<std::uint16_t>(size.height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual_, kMask, values.data());
    level->surface = std::make_unique<XSurface>(connection_, level->window, kDepth, size);
    const xcb_atom_t kind = connection_.atom("_NET_WM_WINDOW_TYPE_POPUP_MENU");
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, level->window,
                        connection_.atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32, 1, &kind);
    xcb_map_window(connection_, level->window);
    levels_.push_back(std::move(level));
    draw(*levels_.back());
    connection_.sync();
}

void XPopupMenu::closeLevelsAbove(std::size_t count) {
    while (levels_.size() > count) {
        levels_.back()->surface.reset();
        xcb_destroy_window(connection_, levels_.back()->window);
        levels_.pop_back();
    }
}

// Another program may hold the pointer for a moment, so it is tried again with each poll.
void XPopupMenu::grab() {
    const xcb_window_t window = levels_.front()->window;
    if (!pointerGrabbed_) {
        const auto cookie = xcb_grab_pointer(connection_, 0, window, kPointerEvents, XCB_GRAB_MODE_ASYNC,
                                             XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
        const XReply<xcb_grab_pointer_reply_t> reply(xcb_grab_pointer_reply(connection_, cookie, nullptr));
        pointerGrabbed_ = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    }
    if (!keyboardGrabbed_) {
        const auto cookie = xcb_grab_keyboard(connection_, 0, window, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
                                              XCB_GRAB_MODE_ASYNC);
        const XReply<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(connection_, cookie, nullptr));
        keyboardGrabbed_ = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    }
}

void XPopupMenu::handle(const xcb_generic_event_t& event) {
    if (keyboard_.takeEvent(event)) {
        return;
    }
    switch (eventKind(event)) {
    case XCB_EXPOSE: {
        const auto& expose = eventAs<xcb_expose_event_t>(event);
        for (const auto& level : levels_) {
            if (level->window == expose.window) {
                level->surface->show({expose.x, expose.y, expose.width, expose.height});
            }
        }
        break;
    }
    case XCB_MOTION_NOTIFY:
        pointerMoved(onScreen(eventAs<xcb_motion_notify_event_t>(event)));
        break;
    case XCB_BUTTON_PRESS:
        buttonPressed(eventAs<xcb_button_press_event_t>(event));
        break;
    case XCB_BUTTON_RELEASE:
        buttonReleased(onScreen(eventAs<xcb_button_release_event_t>(event)));
        break;
    case XCB_KEY_PRESS:
        keyPressed(keyboard_.pressed(eventAs<xcb_key_press_event_t>(event)));
        break;
    default:
        break;
    }
}

XPopupMenu::Level* XPopupMenu::levelAt(Point p) {
    for (auto level = levels_.rbegin(); level != levels_.rend(); ++level) {
        if ((*level)->place.contains(p)) {
            return level->get();
        }
    }
    return nullptr;
}

void XPopupMenu::pointerMoved(Point p) {
    pointer_ = p;
    if (!opened_) {
        opened_ = p;
    }
    armed_ |= std::abs(p.x - opened_->x) > kArmingPixels || std::abs(p.y - opened_->y) > kArmingPixels;
    const Level* const level = levelAt(p);
    if (!level) { // an open submenu stays while the pointer is on its way to it
        if (!levels_.back()->highlighted ||
            levels_.back()->pane.entries()[*levels_.back()->highlighted].submenu.empty()) {
            highlight(levels_.size() - 1, std::nullopt);
        }
        return;
    }
    const auto found =
        std::find_if(levels_.begin(), levels_.end(), [&](const auto& l) { return l.get() == level; });
    highlight(static_cast<std::size_t>(found - levels_.begin()), level->pane.entryAt(level->inPane(p)));
    openSubmenu();
}

void XPopupMenu::highlight(std::size_t index, std::optional<std::size_t> entry) {
    Level& level = *levels_[index];
    if (level.highlighted == entry) {
        return;
    }
    closeLevelsAbove(index + 1);
    level.highlighted = entry;
    draw(level);
}

void XPopupMenu::openSubmenu() {
    const Level& level = *levels_.back();
    if (!level.highlighted || level.pane.entries()[*level.highlighted].submenu.empty()) {
        return;
    }
    const Rect row = level.pane.rowOf(*level.highlighted);
    openLevel(level.pane.entries()[*level.highlighted].submenu,
              {level.place.x + row.x, level.place.y + row.y, row.width, row.height});
}

void XPopupMenu::buttonPressed(const xcb_button_press_event_t& event) {
    Level* const level = levelAt(onScreen(event));
    if (event.detail == XCB_BUTTON_INDEX_4 || event.detail == XCB_BUTTON_INDEX_5) {
        if (level && level->pane.scroll(event.detail == XCB_BUTTON_INDEX_4 ? -3 : 3)) {
            pointerMoved(onScreen(event));
            draw(*level);
        }
        return;
    }
    armed_ = true;
    if (!level) {
        done_ = true;
        return;
    }
    pointerMoved(onScreen(event));
}

void XPopupMenu::buttonReleased(Point p) {
    if (armed_ && levelAt(p)) {
        pointerMoved(p);
        choose();
    }
    armed_ = true;
}

void XPopupMenu::choose() {
    const Level& level = *levels_.back();
    if (!level.highlighted || !level.pane.entries()[*level.highlighted].submenu.empty()) {
        return;
    }
    answer_ = level.pane.entries()[*level.highlighted].command;
    done_ = true;
}

void XPopupMenu::keyPressed(const KeyEvent& key) {
    const std::size_t top = levels_.size() - 1;
    Level& level = *levels_.back();
    const auto enterSubmenu = [&] {
        openSubmenu();
        if (levels_.size() > top + 1) {
            highlight(top + 1, levels_.back()->pane.next(std::nullopt, 1));
        }
    };
    switch (key.key) {
    case VirtualKey::up:
    case VirtualKey::down:
        if (const auto next = level.pane.next(level.highlighted, key.key == VirtualKey::up ? -1 : 1)) {
            level.pane.reveal(*next);
            highlight(top, next);
        }
        break;
    case VirtualKey::right:
        enterSubmenu();
        break;
    case VirtualKey::left:
        closeLevelsAbove(std::max<std::size_t>(1, top));
        break;
    case VirtualKey::escape:
        done_ = top == 0;
        closeLevelsAbove(std::max<std::size_t>(1, top));
        break;
    case VirtualKey::enter:
    case VirtualKey::numpadEnter:
    case VirtualKey::space:
        enterSubmenu();
        if (levels_.size() == top + 1) {
            choose();
        }
        break;
    default:
        if (const auto entry = level.pane.byLetter(key.character, level.highlighted);
            entry && key.character) {
            highlight(top, entry);
            enterSubmenu();
            if (levels_.size() == top + 1) {
                choose();
            }
        }
        break;
    }
}

void XPopupMenu::scrollUnderPointer() {
    Level* const level = pointer_ && !done_ ? levelAt(*pointer_) : nullptr;
    const int direction = level ? level->pane.scrollsAt(level->inPane(*pointer_)) : 0;
    if (direction != 0 && Clock::now() - lastScroll_ >= kScrollInterval && level->pane.scroll(direction)) {
        lastScroll_ = Clock::now();
        draw(*level);
    }
}

void XPopupMenu::draw(Level& level) {
    level.pane.draw(level.surface->canvas(), level.highlighted);
    level.surface->show({0, 0, level.place.width, level.place.height});
    xcb_flush(connection_);
}

std::unique_ptr<PopupMenu> PopupMenu::open(Window& owner, Rect anchor, std::vector<MenuEntry> entries,
                                           TextPainter& painter, Chosen chosen) {
    return std::make_unique<XPopupMenu>(dynamic_cast<XWindow&>(owner), anchor, std::move(entries), painter,
                                        std::move(chosen));
}

} // namespace Platform
