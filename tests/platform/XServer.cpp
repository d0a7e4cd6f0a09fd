#include "XServer.h"

#include <xcb/xtest.h>

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace Testing {

using namespace std::chrono_literals;

namespace {

constexpr auto kPatience = 2s;

std::string readLine(int descriptor) {
    std::string line;
    char c = 0;
    while (read(descriptor, &c, 1) == 1 && c != '\n') {
        line += c;
    }
    return line;
}

} // namespace

XServer::XServer(const std::vector<std::string>& options) {
    int ends[2];
    if (pipe(ends) != 0) {
        throw std::runtime_error("pipe");
    }
    const std::string descriptor = std::to_string(ends[1]);
    std::vector<std::string> words{"Xvfb", "-displayfd", descriptor, "-screen",
                                   "0",    "640x480x24", "-noreset"};
    words.insert(words.end(), options.begin(), options.end());
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    process_ = fork();
    if (process_ == 0) {
        close(ends[0]);
        if (!freopen("/dev/null", "w", stderr)) {
            _exit(126);
        }
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    close(ends[1]);
    const std::string number = readLine(ends[0]);
    close(ends[0]);
    if (number.empty()) {
        throw std::runtime_error("Xvfb does not start");
    }
    display_.append(1, ':').append(number);
    use();
}

XServer::~XServer() {
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
}

void XServer::use(const std::string& host) const {
    setenv("DISPLAY", (host + display_).c_str(), 1);
}

xcb_window_t Client::openWindow(int depth, int x, int y, int width, int height, std::uint32_t events) {
    const xcb_visualid_t visual = connection.visualOfDepth(depth);
    const xcb_colormap_t colours = xcb_generate_id(connection);
    xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_NONE, colours, connection.screen().root, visual);
    const xcb_window_t window = xcb_generate_id(connection);
    const std::uint32_t values[] = {0xFF202020, 0, 1, events, colours};
    xcb_create_window(connection, static_cast<std::uint8_t>(depth), window, connection.screen().root,
                      static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                      static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK |
                          XCB_CW_COLORMAP,
                      values);
    xcb_map_window(connection, window);
    connection.sync();
    return window;
}

void Client::destroy(xcb_window_t window) {
    xcb_destroy_window(connection, window);
    connection.sync();
}

void Client::resize(xcb_window_t window, int width, int height) {
    const std::uint32_t values[] = {static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)};
    xcb_configure_window(connection, window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
    connection.sync();
}

void Client::fake(int kind, int detail, int x, int y) {
    xcb_test_fake_input(connection, static_cast<std::uint8_t>(kind), static_cast<std::uint8_t>(detail),
                        XCB_CURRENT_TIME, connection.screen().root, static_cast<std::int16_t>(x),
                        static_cast<std::int16_t>(y), 0);
    connection.sync();
}

void Client::movePointer(int x, int y) {
    fake(XCB_MOTION_NOTIFY, 0, x, y);
}

void Client::press(int button) {
    fake(XCB_BUTTON_PRESS, button);
}

void Client::release(int button) {
    fake(XCB_BUTTON_RELEASE, button);
}

void Client::click(int button) {
    press(button);
    release(button);
}

void Client::keyDown(int code) {
    fake(XCB_KEY_PRESS, code);
}

void Client::keyUp(int code) {
    fake(XCB_KEY_RELEASE, code);
}

void Client::type(int code) {
    keyDown(code);
    keyUp(code);
}

std::uint32_t Client::pixel(xcb_window_t window, int x, int y) {
    const auto cookie = xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, window,
                                      static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 1, 1, ~0U);
    const Platform::XReply<xcb_get_image_reply_t> reply(xcb_get_image_reply(connection, cookie, nullptr));
    if (!reply) {
        return 0xDEADBEEF;
    }
    const std::uint32_t pixel = *reinterpret_cast<std::uint32_t*>(xcb_get_image_data(reply.get()));
    return reply->depth == 32 ? pixel : pixel & 0xFFFFFF;
}

std::vector<xcb_window_t> Client::children(xcb_window_t window) {
    const Platform::XReply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
    if (!tree) {
        return {};
    }
    const xcb_window_t* const first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

Platform::XReply<xcb_generic_event_t> Client::waitFor(int kind) {
    Platform::XReply<xcb_generic_event_t> event;
    eventually([&] {
        event = connection.nextEvent();
        return event && Platform::eventKind(*event) == kind;
    });
    return event;
}

bool eventually(const std::function<bool()>& step) {
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (!step()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(1ms);
    }
    return true;
}

} // namespace Testing
