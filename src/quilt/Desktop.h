// What a layout needs of the desktop around it: message boxes, menus, the clipboard, the browser. The
// editor's window implements it, tests fake it. Nothing here waits: the answer comes by a call from the event
// loop, at once where the service can do so. Each request is answered exactly once, unless the desktop goes
// away first.
#pragma once

#include "quilt/Geometry.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Quilt {

enum class MessageKind { info, warning, error, question };
enum class MessageButton { ok, cancel, retry, yes, no, abort, ignore };

struct Message {
    MessageKind kind = MessageKind::info;
    std::string text; // paragraphs stand apart by an empty line
    std::vector<MessageButton> buttons = {MessageButton::ok};
    std::size_t defaultButton = 0; // index into `buttons`: the one that the return key stands for
};

struct MenuItem {
    std::string
        caption; // empty: a line between items. "&" before the key that chooses the item, "&&" for "&"
    bool enabled = true;
    bool checked = false;
    std::vector<MenuItem> items; // of a submenu
    int id = 0;                  // of an item that can be chosen; the caller's, at least 1
};

class Desktop {
public:
    virtual ~Desktop() = default;

    // A box closed in another way than by a button answers with `cancel`, or with its last button.
    virtual void showMessage(const Message& message, std::function<void(MessageButton)> answer) = 0;

    // Below `anchor`, which is in pixels of the editor's surface, or at the mouse without one; nullopt:
    // nothing was chosen. Throws "No parent window for popup menu" when the editor is in no window.
    virtual void popUpMenu(const std::vector<MenuItem>& items, std::optional<Rectangle> anchor,
                           std::function<void(std::optional<int>)> chosen) = 0;

    // Opens an address or a file in the program that the user has for it. The caller has checked what it is.
    virtual void launch(const std::string& address) = 0;

    virtual std::optional<std::string> clipboardText() = 0; // UTF-8; nullopt: no text there
    virtual void setClipboardText(const std::string& text) = 0;
};

} // namespace Quilt
