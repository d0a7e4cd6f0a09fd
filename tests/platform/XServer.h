// An X server without a screen for a test to run against, and a second client that plays the user and the
// host.
#pragma once

#include "platform/linux/XConnection.h"

#include <xcb/xcb.h>

#include <chrono>
#include <functional>
#include <string>
#include <sys/types.h>
#include <thread>
#include <vector>

namespace Testing {

// Runs as long as the object lives. The process sees it as its display.
class XServer {
public:
    explicit XServer(const std::vector<std::string>& options = {});
    ~XServer();
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;

    const std::string& display() const { return display_; }
    // Makes it the process's display again, or the same server reached by another way (":5", "127.0.0.1:5").
    void use(const std::string& host = {}) const;

private:
    pid_t process_ = 0;
    std::string display_; // ":5"
};

// A client as a host or the user's hands.
class Client {
public:
    xcb_window_t openWindow(int depth, int x, int y, int width, int height, std::uint32_t events = 0);
    void destroy(xcb_window_t window);
    void resize(xcb_window_t window, int width, int height);

    // With the real pointer and keyboard.
    void movePointer(int x, int y);
    void press(int button);
    void release(int button);
    void click(int button);
    void keyDown(int code);
    void keyUp(int code);
    void type(int code);

    std::uint32_t pixel(xcb_window_t window, int x, int y);
    std::vector<xcb_window_t> children(xcb_window_t window);
    // The next event of this kind within two seconds; null without.
    Platform::XReply<xcb_generic_event_t> waitFor(int kind);

    Platform::XConnection connection;

private:
    void fake(int kind, int detail, int x = 0, int y = 0);
};

// Codes of the keys on the usual PC keyboard.
namespace Key {
inline constexpr int kEscape = 9, kA = 38, kReturn = 36, kShift = 50, kControl = 37, kSpace = 65, kLeft = 113,
                     kF1 = 67, kDown = 116, kUp = 111, kRight = 114, kTab = 23, kN = 57, kM = 58, kT = 28;
}

// Calls `step` until it returns true; false after two seconds.
bool eventually(const std::function<bool()>& step);

} // namespace Testing
