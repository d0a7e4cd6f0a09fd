// The system's own menus. They are modal: poll() shows one and comes back with the answer.
#include "platform/PopupMenu.h"

#include "platform/win32/SystemText.h"

#include <windows.h>

#include <stdexcept>
#include <utility>

namespace Platform {

namespace {

struct MenuCloser {
    void operator()(HMENU menu) const { DestroyMenu(menu); } // the submenus too
};
using Menu = std::unique_ptr<std::remove_pointer_t<HMENU>, MenuCloser>;

// `commands` gets the command of each entry; the system sees its place there, counted from 1.
Menu makeMenu(const std::vector<MenuEntry>& entries, std::vector<int>& commands) {
    Menu menu(CreatePopupMenu());
    if (!menu) {
        throw std::runtime_error("Could not make a menu: " + systemWords(GetLastError()));
    }
    for (const MenuEntry& entry : entries) {
        if (entry.separator) {
            AppendMenuW(menu.get(), MF_SEPARATOR, 0, nullptr);
            continue;
        }
        UINT style = MF_STRING;
        style |= entry.enabled ? MF_ENABLED : MF_GRAYED;
        style |= entry.checked ? MF_CHECKED : MF_UNCHECKED;
        UINT_PTR item = 0;
        Menu submenu;
        if (entry.submenu.empty()) {
            commands.push_back(entry.command);
            item = commands.size();
        } else {
            submenu = makeMenu(entry.submenu, commands);
            item = reinterpret_cast<UINT_PTR>(submenu.get());
            style |= MF_POPUP;
        }
        if (AppendMenuW(menu.get(), style, item, toWide(entry.caption).c_str())) {
            submenu.release(); // the menu's now
        }
    }
    return menu;
}

class SystemMenu final : public PopupMenu {
public:
    SystemMenu(HWND owner, Rect anchor, std::vector<MenuEntry> entries, Chosen chosen)
        : owner_(owner), anchor_(anchor), entries_(std::move(entries)), chosen_(std::move(chosen)) {}

    ~SystemMenu() override {
        if (gone_) {
            *gone_ = true;
            EndMenu();
        }
    }
    SystemMenu(const SystemMenu&) = delete;
    SystemMenu& operator=(const SystemMenu&) = delete;

    bool poll() override {
        const Chosen chosen = std::exchange(chosen_, nullptr);
        if (!chosen) {
            return gone_ != nullptr; // from within the call below
        }
        std::vector<int> commands;
        const Menu menu = makeMenu(entries_, commands);
        bool gone = false;
        gone_ = &gone;
        const std::size_t item = track(menu.get());
        if (gone) {
            return false;
        }
        gone_ = nullptr;
        const bool answered = item >= 1 && item <= commands.size();
        chosen(answered ? std::optional(commands[item - 1]) : std::nullopt); // may destroy this menu
        return false;
    }

private:
    std::size_t track(HMENU menu) const {
        POINT corners[2] = {{anchor_.x, anchor_.y}, {anchor_.x + anchor_.width, anchor_.y + anchor_.height}};
        MapWindowPoints(owner_, nullptr, corners, 2);
        TPMPARAMS place{};
        place.cbSize = sizeof place;
        place.rcExclude = {corners[0].x, corners[0].y, corners[1].x, corners[1].y};
        constexpr UINT kStyle = TPM_RETURNCMD | TPM_NONOTIFY | TPM_LEFTALIGN | TPM_TOPALIGN | TPM_VERTICAL;
        return static_cast<std::size_t>(
            TrackPopupMenuEx(menu, kStyle, corners[0].x, corners[1].y, owner_, &place));
    }

    HWND owner_;
    Rect anchor_;
    std::vector<MenuEntry> entries_;
    Chosen chosen_;
    bool* gone_ = nullptr; // while the menu is on the screen: where to leave word that this object is no more
};

} // namespace

std::unique_ptr<PopupMenu> PopupMenu::open(Window& owner, Rect anchor, std::vector<MenuEntry> entries,
                                           TextPainter&, Chosen chosen) {
    const HWND window = reinterpret_cast<HWND>(owner.nativeId());
    if (!IsWindow(window)) {
        throw std::runtime_error("There is no window for a menu");
    }
    return std::make_unique<SystemMenu>(window, anchor, std::move(entries), std::move(chosen));
}

} // namespace Platform
