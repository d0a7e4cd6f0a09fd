// The system's own menus. They are modal: the answer is there before the object is.
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

class AnsweredMenu final : public PopupMenu {
public:
    AnsweredMenu(std::optional<int> answer, Chosen chosen) : answer_(answer), chosen_(std::move(chosen)) {}

    bool poll() override {
        if (const Chosen chosen = std::exchange(chosen_, nullptr)) {
            const std::optional<int> answer = answer_;
            chosen(answer); // may destroy this menu
        }
        return false;
    }

private:
    std::optional<int> answer_;
    Chosen chosen_;
};

} // namespace

std::unique_ptr<PopupMenu> PopupMenu::open(Window& owner, Rect anchor, std::vector<MenuEntry> entries,
                                           TextPainter&, Chosen chosen) {
    const HWND window = reinterpret_cast<HWND>(owner.nativeId());
    POINT corners[2] = {{anchor.x, anchor.y}, {anchor.x + anchor.width, anchor.y + anchor.height}};
    if (!IsWindow(window)) {
        throw std::runtime_error("There is no window for a menu");
    }
    MapWindowPoints(window, nullptr, corners, 2);
    TPMPARAMS place{};
    place.cbSize = sizeof place;
    place.rcExclude = {corners[0].x, corners[0].y, corners[1].x, corners[1].y};

    std::vector<int> commands;
    const Menu menu = makeMenu(entries, commands);
    const auto item = static_cast<std::size_t>(
        TrackPopupMenuEx(menu.get(), TPM_RETURNCMD | TPM_NONOTIFY | TPM_LEFTALIGN | TPM_TOPALIGN | TPM_VERTICAL,
                         corners[0].x, corners[1].y, window, &place));
    const bool answered = item >= 1 && item <= commands.size();
    return std::make_unique<AnsweredMenu>(answered ? std::optional(commands[item - 1]) : std::nullopt,
                                          std::move(chosen));
}

} // namespace Platform
