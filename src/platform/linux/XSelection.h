// The two sides of the CLIPBOARD selection, by which X programs hand each other text: the one who has copied
// serves whoever pastes.
#pragma once

#include "platform/linux/XConnection.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace Platform {

struct SelectionAtoms {
    explicit SelectionAtoms(const XConnection& connection);

    xcb_atom_t clipboard;
    xcb_atom_t clipboardManager;
    xcb_atom_t saveTargets;
    xcb_atom_t targets;
    xcb_atom_t timestamp;
    xcb_atom_t utf8;
    xcb_atom_t text;
    xcb_atom_t plainUtf8;
    xcb_atom_t plain;
    xcb_atom_t incremental;
    xcb_atom_t own; // the property through which we receive
};

// What another program has in the selection, as UTF-8; nullopt when nobody has text, or does not deliver it
// before the patience ends. Throws std::runtime_error without a display.
std::optional<std::string> readSelection(std::chrono::milliseconds patience);

// Serves one text on a thread and a connection of its own: programs may paste at any time, also while the
// host is busy or shows no editor.
class SelectionOwner {
public:
    // Throws std::runtime_error when the selection cannot be had.
    explicit SelectionOwner(std::string text);
    // Leaves the text to the desktop's clipboard manager, if there is one.
    ~SelectionOwner();
    SelectionOwner(const SelectionOwner&) = delete;
    SelectionOwner& operator=(const SelectionOwner&) = delete;

    // The text, until another program has copied something.
    std::optional<std::string> text() const;

private:
    // A text too long for one property goes in pieces, each when the last has been fetched.
    struct Transfer {
        xcb_window_t requestor;
        xcb_atom_t property;
        xcb_atom_t type;
        std::string text;
        std::size_t sent = 0;
        std::chrono::steady_clock::time_point deadline;
    };
    using Clock = std::chrono::steady_clock;

    void claim();
    void run();
    void waitForEvent();
    void handle(const xcb_generic_event_t& event);
    void answer(const xcb_selection_request_event_t& request);
    bool convert(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t target);
    bool giveText(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t type, std::string text);
    void continueTransfer(const xcb_property_notify_event_t& event);
    void leaveToManager();

    XConnection connection_;
    SelectionAtoms atoms_;
    xcb_window_t window_;
    xcb_timestamp_t since_ = XCB_CURRENT_TIME;
    std::vector<Transfer> transfers_;
    int wake_; // becomes readable when the owner is to stop
    std::optional<Clock::time_point> stopAt_;
    bool stopped_ = false;
    const std::string text_;
    mutable std::mutex mutex_;
    bool owns_ = false; // guarded by mutex_
    std::thread thread_;
};

std::string latin1FromUtf8(std::string_view utf8); // "?" for what has no place there
std::string utf8FromLatin1(std::string_view latin1);

} // namespace Platform
