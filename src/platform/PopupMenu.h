// Pop-up menus: of the system where it has them, else windows of our own. For the main thread only.
#pragma once

#include "platform/TextPainter.h"
#include "platform/Window.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Platform {

struct MenuEntry {
    // "&" stands before the letter that chooses the entry, "&&" for "&".
    std::string caption;
    int command = 0;
    bool enabled = true;
    bool checked = false;
    bool separator = false;
    std::vector<MenuEntry> submenu; // with one, `command` means nothing
};

class PopupMenu {
public:
    using Chosen = std::function<void(std::optional<int> command)>; // nullopt: dismissed

    // Shows the menu below `anchor`, which is in the owner's pixels (a rectangle without size is a point), or
    // above it where the screen ends. `chosen` is called once, from within poll() and never from here, unless
    // the menu is destroyed before, which takes it off the screen. `chosen` may destroy the menu. The owner
    // and the painter must outlive it. Throws std::runtime_error when no menu can be shown.
    static std::unique_ptr<PopupMenu> open(Window& owner, Rect anchor, std::vector<MenuEntry> entries,
                                           TextPainter& painter, Chosen chosen);

    virtual ~PopupMenu() = default;

    // False when the answer has been given. Returns at once, but on Windows when the user has answered, as file
    // dialogs do.
    virtual bool poll() = 0;
};

} // namespace Platform
