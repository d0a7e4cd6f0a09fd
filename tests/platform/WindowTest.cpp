#include "platform/Window.h"
#include "platform/linux/XWindow.h"

#include "XServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>

using namespace Platform;
using namespace Testing;
using testing::ElementsAre;

namespace {

// Writes down what it is told.
class Diary : public WindowListener {
public:
    std::vector<std::string> entries;
    bool usesKeys = true;
    std::function<void()> onMouseDown;
    std::vector<KeyEvent> keys;

    bool has(const std::string& entry) const {
        return std::find(entries.begin(), entries.end(), entry) != entries.end();
    }

    void mouseDown(const MouseEvent& e) override {
        note("down", e, std::to_string(static_cast<int>(e.button)) + "x" + std::to_string(e.clicks));
        if (onMouseDown) {
            onMouseDown();
        }
    }
    void mouseUp(const MouseEvent& e) override { note("up", e, std::to_string(static_cast<int>(e.button))); }
    void mouseMoved(const MouseEvent& e) override { note("move", e, e.modifiers.shift ? "shift" : ""); }
    void mouseLeft() override { entries.emplace_back("left"); }
    void mouseWheel(const WheelEvent& e) override {
        entries.push_back("wheel " + std::to_string(static_cast<int>(e.right)) + " " +
                          std::to_string(static_cast<int>(e.up)));
    }
    bool keyDown(const KeyEvent& key) override {
        entries.push_back("key " + std::to_string(static_cast<int>(key.key)) + " '" + key.text + "'");
        keys.push_back(key);
        return usesKeys;
    }
    void keyUp(const KeyEvent& key) override {
        entries.push_back("keyup " + std::to_string(static_cast<int>(key.key)));
    }
    void focusChanged(bool focused) override { entries.emplace_back(focused ? "focus" : "no focus"); }
    void resized(Size size) override {
        entries.push_back("size " + std::to_string(size.width) + "x" + std::to_string(size.height));
    }
    void windowLost() override { entries.emplace_back("lost"); }

private:
    void note(const std::string& what, const MouseEvent& e, const std::string& more) {
        entries.push_back(what + " " + std::to_string(e.at.x) + "," + std::to_string(e.at.y) +
                          (more.empty() ? "" : " " + more));
    }
};

class WindowTest : public testing::Test {
protected:
    static void SetUpTestSuite() { server_ = new XServer({"-listen", "tcp", "-ac"}); }
    static void TearDownTestSuite() {
        delete server_;
        server_ = nullptr;
    }
    void SetUp() override { user_.movePointer(600, 400); }
    void TearDown() override { server_->use(); }

    // The host's window lies at 100,50 on the screen.
    xcb_window_t host(int depth = 24, std::uint32_t events = 0) {
        return user_.openWindow(depth, 100, 50, 200, 150, events);
    }
    bool until(Window& window, const std::string& entry) {
        return eventually([&] {
            window.poll();
            return diary_.has(entry);
        });
    }

    static XServer* server_;
    Client user_;
    Diary diary_;
};

XServer* WindowTest::server_ = nullptr;

std::size_t entriesOf(const char* folder) {
    const auto files = std::filesystem::directory_iterator(folder);
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

std::size_t sharedSegments() {
    std::ifstream table("/proc/sysvipc/shm");
    return static_cast<std::size_t>(
        std::count(std::istreambuf_iterator<char>(table), std::istreambuf_iterator<char>(), '\n'));
}

std::size_t residentPages() {
    std::size_t total = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident;
}

Argb colourAt(int x, int y) {
    return static_cast<Argb>(x * 0x10101 + y * 0x305) & 0xFFFFFF;
}

// Whatever lies between this picture and the screen, the pixels are the same, and only dirty parts change.
TEST_F(WindowTest, ShowsTheDirtyPartsOfThePicture) {
    struct Way {
        const char* name;
        int hostDepth;
        const char* displayHost;
        bool shared;
        Size size;
    };
    const Way ways[] = {{"shared", 24, "", true, {80, 60}},
                        {"shared, transparent host", 32, "", true, {80, 60}},
                        {"over the network", 24, "127.0.0.1", false, {80, 60}},
                        {"over the network, transparent host", 32, "127.0.0.1", false, {80, 60}},
                        {"over the network, larger than a request", 24, "127.0.0.1", false, {1200, 900}},
                        {"one pixel", 24, "", true, {1, 1}}};
    for (const Way& way : ways) {
        SCOPED_TRACE(way.name);
        server_->use(way.displayHost);
        const auto parent = user_.openWindow(way.hostDepth, 0, 0, 640, 480);
        const auto window = Window::openInside(parent, way.size, diary_);
        EXPECT_EQ(dynamic_cast<XWindow&>(*window).usesSharedMemory(), way.shared);
        const auto [width, height] = way.size;
        const int stride = width + 7;
        std::vector<Argb> pixels(static_cast<std::size_t>(stride) * static_cast<std::size_t>(height));
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                pixels[static_cast<std::size_t>(y * stride + x)] = colourAt(x, y);
            }
        }
        const PixelView picture{pixels.data(), width, height, stride};
        const Rect all{0, 0, width, height};
        window->present(picture, {&all, 1});
        const auto id = static_cast<xcb_window_t>(window->nativeId());
        const Argb opaque = way.hostDepth == 32 ? 0xFF000000 : 0;
        const Point last{std::min(width, 640) - 1, std::min(height, 480) - 1};
        const Argb lastPixel = colourAt(last.x, last.y) | opaque;
        EXPECT_TRUE(eventually([&] { return user_.pixel(id, last.x, last.y) == lastPixel; }));
        EXPECT_EQ(user_.pixel(id, 0, 0), opaque);
        if (width > 20) {
            std::fill(pixels.begin(), pixels.end(), 0x00123456);
            const Rect parts[] = {{5, 5, 3, 2}, {-10, 20, 12, 4000}, {30, 30, 0, 5}};
            window->present(picture, parts);
            EXPECT_TRUE(eventually([&] { return user_.pixel(id, 1, 21) == (0x123456 | opaque); }));
            EXPECT_EQ(user_.pixel(id, 7, 6), 0x123456 | opaque);
            EXPECT_EQ(user_.pixel(id, 8, 6), colourAt(8, 6) | opaque);
        }
        user_.destroy(parent);
    }
}

TEST_F(WindowTest, RepairsWhatAnotherWindowCovered) {
    const auto parent = host();
    const auto window = Window::openInside(parent, {50, 50}, diary_);
    const std::vector<Argb> pixels(2500, 0xFF00AA55);
    const Rect all{0, 0, 50, 50};
    window->present({pixels.data(), 50, 50, 50}, {&all, 1});
    window->poll();
    const auto cover = user_.openWindow(24, 110, 60, 20, 20);
    const auto id = static_cast<xcb_window_t>(window->nativeId());
    user_.destroy(cover);
    EXPECT_TRUE(eventually([&] {
        window->poll();
        return user_.pixel(id, 15, 15) == 0x00AA55;
    }));
    user_.destroy(parent);
}

TEST_F(WindowTest, TellsOfTheMouse) {
    const auto parent = host();
    const auto window = Window::openInside(parent, {80, 60}, diary_);
    // What is told of something that the user does, up to the entry that ends it.
    const auto told = [&](const std::string& last, const std::function<void()>& act) {
        diary_.entries.clear();
        act();
        EXPECT_TRUE(until(*window, last));
        return diary_.entries;
    };

    EXPECT_THAT(told("up 12,15 0",
                     [&] {
                         user_.movePointer(110, 65);
                         user_.movePointer(112, 65);
                         user_.click(1);
                     }),
                ElementsAre("move 12,15", "down 12,15 0x1", "up 12,15 0"));
    EXPECT_THAT(told("up 12,15 2",
                     [&] {
                         user_.click(1);
                         user_.click(3);
                     }),
                ElementsAre("down 12,15 0x2", "up 12,15 0", "down 12,15 2x1", "up 12,15 2"));
    EXPECT_THAT(told("wheel 1 0",
                     [&] {
                         for (const int button : {4, 5, 6, 7}) {
                             user_.click(button);
                         }
                     }),
                ElementsAre("wheel 0 1", "wheel 0 -1", "wheel -1 0", "wheel 1 0"));
    // A drag goes on outside, and the pointer counts as gone when the button is let go there.
    EXPECT_THAT(told("left",
                     [&] {
                         user_.press(1);
                         user_.keyDown(Key::kShift);
                         user_.movePointer(300, 40);
                         user_.keyUp(Key::kShift);
                         user_.release(1);
                     }),
                ElementsAre("down 12,15 0x1", "key 54 ''", "move 200,-10 shift", "up 200,-10 0", "left"));
    user_.destroy(parent);
}

TEST_F(WindowTest, TellsOfKeysAndWhatTheyWrite) {
    const auto parent = host();
    const auto window = Window::openInside(parent, {80, 60}, diary_);
    user_.movePointer(110, 65);
    window->takeKeyboardFocus();
    ASSERT_TRUE(until(*window, "focus"));
    diary_.entries.clear();
    user_.type(Key::kA);
    user_.keyDown(Key::kShift);
    user_.type(Key::kA);
    user_.keyUp(Key::kShift);
    user_.keyDown(Key::kControl);
    user_.type(Key::kA);
    user_.keyUp(Key::kControl);
    for (const int code : {Key::kLeft, Key::kF1, Key::kReturn, Key::kSpace, Key::kEscape}) {
        user_.type(code);
    }
    EXPECT_TRUE(until(*window, "keyup 6"));
    std::erase_if(diary_.entries, [](const std::string& entry) { return entry.starts_with("keyup"); });
    EXPECT_THAT(diary_.entries, ElementsAre("key 0 'a'", "key 54 ''", "key 0 'A'", "key 55 ''", "key 0 ''",
                                            "key 11 ''", "key 40 ''", "key 4 ''", "key 7 ' '", "key 6 ''"));
    EXPECT_EQ(diary_.keys[2].character, U'a');
    EXPECT_TRUE(diary_.keys[2].modifiers.shift);
    EXPECT_EQ(diary_.keys[4].character, U'a');
    EXPECT_EQ(diary_.keys[4].modifiers, (Modifiers{.control = true}));
    user_.destroy(parent);
}

TEST_F(WindowTest, HandsKeysWithoutUseToTheHost) {
    const auto parent = host(24, XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE);
    const auto window = Window::openInside(parent, {80, 60}, diary_);
    diary_.usesKeys = false;
    user_.movePointer(110, 65);
    user_.type(Key::kSpace);
    ASSERT_TRUE(until(*window, "key 7 ' '"));
    for (const int kind : {XCB_KEY_PRESS, XCB_KEY_RELEASE}) {
        eventually([&] {
            window->poll();
            return true;
        });
        const auto event = user_.waitFor(kind);
        ASSERT_TRUE(event);
        EXPECT_EQ(eventAs<xcb_key_press_event_t>(*event).detail, Key::kSpace);
        EXPECT_EQ(eventAs<xcb_key_press_event_t>(*event).event, parent);
    }
    EXPECT_FALSE(diary_.has("keyup 7"));
    diary_.usesKeys = true;
    user_.type(Key::kA);
    ASSERT_TRUE(until(*window, "keyup 0"));
    user_.connection.sync();
    EXPECT_FALSE(user_.connection.nextEvent());
    user_.destroy(parent);
}

TEST_F(WindowTest, GivesTheKeyboardBack) {
    const auto parent = host();
    xcb_set_input_focus(user_.connection, XCB_INPUT_FOCUS_PARENT, parent, XCB_CURRENT_TIME);
    user_.connection.sync();
    const auto window = Window::openInside(parent, {80, 60}, diary_);
    const auto focus = [&] {
        const XReply<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(user_.connection, xcb_get_input_focus(user_.connection), nullptr));
        return reply->focus;
    };
    window->takeKeyboardFocus();
    EXPECT_TRUE(until(*window, "focus"));
    EXPECT_EQ(focus(), window->nativeId());
    window->releaseKeyboardFocus();
    EXPECT_TRUE(until(*window, "no focus"));
    EXPECT_EQ(focus(), parent);
    user_.destroy(parent);
}

TEST_F(WindowTest, SurvivesTheEndOfTheHostsWindow) {
    const auto parent = host();
    const auto window = Window::openInside(parent, {80, 60}, diary_);
    user_.destroy(parent);
    EXPECT_TRUE(until(*window, "lost"));
    EXPECT_FALSE(window->alive());
    const std::vector<Argb> pixels(4800);
    const Rect all{0, 0, 80, 60};
    window->present({pixels.data(), 80, 60, 80}, {&all, 1});
    window->resize({10, 10});
    window->setCursor(Cursor::hand);
    window->takeKeyboardFocus();
    window->capturePointer();
    window->poll();
    EXPECT_EQ(std::count(diary_.entries.begin(), diary_.entries.end(), "lost"), 1);
}

TEST_F(WindowTest, FollowsAndGivesSizes) {
    const auto parent = host();
    const auto window = Window::openInside(parent, {80, 60}, diary_);
    const auto id = static_cast<xcb_window_t>(window->nativeId());
    for (int step = 0; step < 20; ++step) { // answers to these come after later ones and are no news
        window->resize({100 + step, 70});
    }
    user_.resize(id, 33, 22);
    EXPECT_TRUE(until(*window, "size 33x22"));
    EXPECT_EQ(window->size(), (Size{33, 22}));
    EXPECT_THAT(diary_.entries, ElementsAre("size 33x22"));
    user_.destroy(parent);
}

TEST_F(WindowTest, MayBeDestroyedByItsListener) {
    const auto parent = host();
    auto window = Window::openInside(parent, {80, 60}, diary_);
    diary_.onMouseDown = [&] { window.reset(); };
    user_.movePointer(110, 65);
    user_.click(1);
    EXPECT_TRUE(eventually([&] {
        if (window) {
            window->poll();
        }
        return !window;
    }));
    EXPECT_EQ(user_.children(parent).size(), 0U);
    user_.destroy(parent);
}

TEST_F(WindowTest, EachOfSeveralHasItsOwnEvents) {
    const auto parent = host();
    const auto other = user_.openWindow(24, 400, 50, 100, 100);
    Diary otherDiary;
    const auto window = Window::openInside(parent, {80, 60}, diary_);
    const auto second = Window::openInside(other, {80, 60}, otherDiary);
    user_.movePointer(405, 56);
    user_.click(1);
    EXPECT_TRUE(eventually([&] {
        window->poll();
        second->poll();
        return otherDiary.has("up 5,6 0");
    }));
    EXPECT_TRUE(diary_.entries.empty());
    user_.destroy(parent);
    user_.destroy(other);
}

TEST_F(WindowTest, AllCursorsExist) {
    const auto parent = host();
    const auto window = Window::openInside(parent, {80, 60}, diary_);
    for (int cursor = 0; cursor < kCursorCount; ++cursor) {
        window->setCursor(static_cast<Cursor>(cursor));
    }
    window->poll();
    EXPECT_TRUE(window->alive());
    user_.destroy(parent);
}

// The server takes 256 clients at most, so a connection left open would show by itself.
TEST_F(WindowTest, AThousandLeaveNothingBehind) {
    const auto parent = host();
    [[maybe_unused]] std::size_t pages = 0;
    const std::size_t files = entriesOf("/proc/self/fd");
    const std::size_t segments = sharedSegments();
    for (int round = 0; round < 1000; ++round) {
        const auto window = Window::openInside(parent, {120, 80}, diary_);
        const std::vector<Argb> pixels(9600);
        const Rect all{0, 0, 120, 80};
        window->present({pixels.data(), 120, 80, 120}, {&all, 1});
        window->poll();
        if (round == 200) {
            pages = residentPages();
        }
    }
    EXPECT_EQ(entriesOf("/proc/self/fd"), files);
    EXPECT_TRUE(eventually([&] { return sharedSegments() <= segments; }));
    EXPECT_TRUE(user_.children(parent).empty());
#ifndef __SANITIZE_ADDRESS__ // which keeps what is freed for a while, and finds leaks itself
    EXPECT_LT(residentPages(), pages + 200) << "800 windows took more than 200 pages";
#endif
    user_.destroy(parent);
}

TEST_F(WindowTest, SaysWhyThereIsNone) {
    struct Case {
        const char* display;
        NativeWindow parent;
        std::string error;
    };
    const Case cases[] = {
        {":4711", 1, "Could not reach the X display :4711"},
        {"", 1, "Could not reach the X display (DISPLAY is not set)"},
        {server_->display().c_str(), 0, "The host gave no window"},
        {server_->display().c_str(), 0x7654321, "The host's window does not exist"},
    };
    for (const Case& c : cases) {
        setenv("DISPLAY", c.display, 1);
        try {
            Window::openInside(c.parent, {10, 10}, diary_);
            ADD_FAILURE() << c.error;
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(error.what(), c.error);
        }
    }
}

TEST(WindowWithoutServer, SurvivesTheEndOfTheDisplay) {
    auto server = std::make_unique<XServer>();
    Diary diary;
    const auto window = Window::openTopLevel("Murmelon", {80, 60}, diary);
    server.reset();
    EXPECT_TRUE(eventually([&] {
        window->poll();
        return diary.has("lost");
    }));
    window->resize({10, 10});
    window->poll();
}

} // namespace
