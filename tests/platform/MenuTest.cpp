#include "platform/MessageDialog.h"
#include "platform/PopupMenu.h"
#include "platform/TextLines.h"
#include "platform/linux/MenuPane.h"

#include "BlockLetters.h"
#include "XServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Platform;
using namespace Testing;
using testing::ElementsAre;

namespace {

TEST(MenuCaption, FindsTheLetterThatChooses) {
    struct Case {
        const char* caption;
        const char* text;
        std::size_t marked;
    };
    const std::size_t none = std::string::npos;
    const Case cases[] = {{"&Open", "Open", 0},
                          {"Save &As", "Save As", 5},
                          {"Pulse && Noise", "Pulse & Noise", none},
                          {"&&&x", "&x", 1},
                          {"Last&", "Last&", none},
                          {"&a&b", "ab", 0},
                          {"", "", none},
                          {"&", "&", none}};
    for (const Case& c : cases) {
        const MenuCaption read = readMenuCaption(c.caption);
        EXPECT_EQ(read.text, c.text) << c.caption;
        EXPECT_EQ(read.marked, c.marked) << c.caption;
    }
}

TEST(TextLines, BreakAtBlanksAndWithinWordsThatAreTooWide) {
    struct Case {
        const char* text;
        std::vector<std::string> lines;
    };
    const Case cases[] = {
        {"", {""}},
        {"one two three", {"one two", "three"}},
        {"one\n\ntwo", {"one", "", "two"}},
        {"abcdefghijklmnop q", {"abcdefgh", "ijklmnop", "q"}},
        {"a abcdefghij", {"a", "abcdefgh", "ij"}},
        {"\xC3\xA4\xC3\xB6\xC3\xBC\xC3\x9F\xC3\xA4", {"\xC3\xA4\xC3\xB6\xC3\xBC\xC3\x9F", "\xC3\xA4"}}};
    for (const Case& c : cases) {
        const auto bytes = [](std::string_view piece) { return static_cast<int>(piece.size()); };
        EXPECT_EQ(breakIntoLines(c.text, 8, bytes), c.lines) << c.text;
    }
}

MenuEntry entry(std::string caption, int command) {
    MenuEntry made;
    made.caption = std::move(caption);
    made.command = command;
    return made;
}

std::vector<MenuEntry> exampleMenu() {
    std::vector<MenuEntry> entries{
        entry("&First", 1), entry("Second", 2), {}, entry("&More", 0), entry("&None", 5)};
    entries[1].checked = true;
    entries[2].separator = true;
    entries[3].submenu = {entry("Deep &One", 31), entry("Deep &Two", 32)};
    entries[4].enabled = false;
    return entries;
}

TEST(MenuPane, GoesPastWhatCannotBeChosen) {
    BlockLetters letters;
    const auto entries = exampleMenu();
    const MenuPane pane(entries, letters, 1000);
    EXPECT_EQ(pane.next(std::nullopt, 1), 0U);
    EXPECT_EQ(pane.next(1U, 1), 3U);
    EXPECT_EQ(pane.next(3U, 1), 0U);
    EXPECT_EQ(pane.next(0U, -1), 3U);
    EXPECT_EQ(pane.byLetter(U'M', std::nullopt), 3U);
    EXPECT_EQ(pane.byLetter(U'n', std::nullopt), std::nullopt);
    const std::vector<MenuEntry> nothing;
    EXPECT_EQ(MenuPane(nothing, letters, 1000).next(std::nullopt, 1), std::nullopt);
}

TEST(MenuPane, ScrollsWhatIsHigherThanTheScreen) {
    BlockLetters letters;
    std::vector<MenuEntry> entries;
    for (int i = 0; i < 500; ++i) {
        entries.push_back(entry("Patch " + std::to_string(i), i));
    }
    MenuPane pane(entries, letters, 300);
    EXPECT_EQ(pane.size().height, 300);
    EXPECT_EQ(pane.scrollsAt({20, 3}), -1);
    EXPECT_EQ(pane.scrollsAt({20, 297}), 1);
    EXPECT_EQ(pane.entryAt({20, 20}), 0U);
    EXPECT_EQ(pane.entryAt({20, 297}), std::nullopt);
    EXPECT_FALSE(pane.scroll(-1));
    while (pane.scroll(7)) {
    }
    EXPECT_EQ(pane.entryAt({20, 280}), 499U);
    pane.reveal(250);
    EXPECT_EQ(pane.entryAt({20, 20}), 250U);
}

class DesktopWindows : public testing::Test {
protected:
    static void SetUpTestSuite() { server_ = new XServer(); }
    static void TearDownTestSuite() {
        delete server_;
        server_ = nullptr;
    }
    void SetUp() override {
        server_->use();
        user_.movePointer(5, 5);
        host_ = user_.openWindow(24, 100, 50, 200, 150);
        owner_ = Window::openInside(host_, {200, 150}, listener_);
    }
    void TearDown() override {
        owner_.reset();
        user_.destroy(host_);
    }

    struct Listener : WindowListener {
        std::vector<std::string> told;
        std::function<void()> onDown;
        void mouseDown(const MouseEvent&) override {
            told.emplace_back("down");
            if (onDown) {
                onDown();
            }
        }
        void mouseUp(const MouseEvent&) override { told.emplace_back("up"); }
        void mouseCaptureLost() override { told.emplace_back("capture lost"); }
    };

    void open(Rect anchor = {20, 30, 60, 20}) {
        answers_.clear();
        menu_ = PopupMenu::open(*owner_, anchor, exampleMenu(), letters_, [this](std::optional<int> command) {
            answers_.push_back(command.value_or(-1));
            menu_.reset();
        });
    }
    void step() {
        if (menu_) {
            menu_->poll();
        }
        owner_->poll();
    }
    // Gives the menu time to see what the user has done.
    void settle() {
        for (int i = 0; i < 5; ++i) {
            step();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    std::vector<int> answer() {
        eventually([&] {
            step();
            return !menu_;
        });
        return answers_;
    }

    static XServer* server_;
    Client user_;
    Listener listener_;
    xcb_window_t host_ = 0;
    std::unique_ptr<Window> owner_;
    BlockLetters letters_;
    std::unique_ptr<PopupMenu> menu_;
    std::vector<int> answers_;
};

XServer* DesktopWindows::server_ = nullptr;

// The menu lies at 120,100; its rows are 21 pixels high, the separator 8.
TEST_F(DesktopWindows, MenuAnswersWhatTheMouseChooses) {
    struct Case {
        const char* name;
        std::vector<Point> clicks;
        std::vector<int> answer;
    };
    const Case cases[] = {{"first", {{150, 110}}, {1}},
                          {"second", {{150, 130}}, {2}},
                          {"disabled, then first", {{150, 180}, {150, 110}}, {1}},
                          {"separator, then second", {{150, 147}, {150, 130}}, {2}},
                          {"submenu", {{150, 160}, {260, 185}}, {32}},
                          {"outside", {{5, 5}}, {-1}},
                          {"outside, in the owner", {{110, 60}}, {-1}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        open();
        for (const Point& at : c.clicks) {
            settle();
            user_.movePointer(at.x, at.y);
            settle();
            user_.click(1);
        }
        EXPECT_EQ(answer(), c.answer);
        EXPECT_TRUE(listener_.told.empty()) << "the owner sees nothing of it";
    }
}

TEST_F(DesktopWindows, MenuAnswersWhatKeysChoose) {
    struct Case {
        const char* name;
        std::vector<int> keys;
        std::vector<int> answer;
    };
    const Case cases[] = {
        {"down, return", {Key::kDown, Key::kReturn}, {1}},
        {"up reaches the last", {Key::kUp, Key::kRight, Key::kReturn}, {31}},
        {"into the submenu and back", {Key::kUp, Key::kRight, Key::kLeft, Key::kUp, Key::kReturn}, {2}},
        {"escape leaves one level", {Key::kUp, Key::kRight, Key::kEscape, Key::kDown, Key::kReturn}, {1}},
        {"escape", {Key::kEscape}, {-1}},
        {"letters", {Key::kM, Key::kT}, {32}},
        {"letter of a disabled entry", {Key::kN, Key::kEscape}, {-1}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        open();
        settle();
        for (const int key : c.keys) {
            user_.type(key);
            settle();
        }
        EXPECT_EQ(answer(), c.answer);
    }
}

// Press, drag to the entry, let go: the press was the owner's, and its pointer has to be given up.
TEST_F(DesktopWindows, MenuOpenedByAPressIsChosenFromByItsRelease) {
    listener_.onDown = [&] { open(); };
    user_.movePointer(125, 85);
    user_.press(1);
    ASSERT_TRUE(eventually([&] {
        step();
        return menu_ != nullptr;
    }));
    settle();
    user_.movePointer(150, 110);
    user_.movePointer(150, 130);
    user_.release(1);
    EXPECT_EQ(answer(), std::vector<int>{2});
    EXPECT_THAT(listener_.told, ElementsAre("down", "capture lost"));
}

TEST_F(DesktopWindows, MenuStaysOnTheScreenAndGoesWithItsOwner) {
    for (const Rect& anchor : {Rect{500, 400, 20, 20}, Rect{-300, -300, 0, 0}}) {
        const auto before = user_.children(user_.connection.screen().root);
        open(anchor);
        const auto after = user_.children(user_.connection.screen().root);
        ASSERT_EQ(after.size(), before.size() + 1);
        const XReply<xcb_get_geometry_reply_t> place(xcb_get_geometry_reply(
            user_.connection, xcb_get_geometry(user_.connection, after.back()), nullptr));
        EXPECT_GE(place->x, 0);
        EXPECT_GE(place->y, 0);
        EXPECT_LE(place->x + place->width, 640);
        EXPECT_LE(place->y + place->height, 480);
        menu_.reset();
        EXPECT_EQ(user_.children(user_.connection.screen().root).size(), before.size());
        EXPECT_TRUE(answers_.empty());
    }
}

TEST_F(DesktopWindows, MenuShowsItsEntries) {
    open();
    step();
    const auto menu = user_.children(user_.connection.screen().root).back();
    const MenuColours colours;
    const auto at = [&](int x, int y) { return user_.pixel(menu, x, y) | 0xFF000000; };
    EXPECT_EQ(at(0, 0), colours.border);
    EXPECT_EQ(at(30, 11), colours.text);
    EXPECT_EQ(at(30, 82), colours.disabledText);
    EXPECT_EQ(at(60, 47), colours.border) << "separator";
    EXPECT_EQ(at(11, 33), colours.text) << "tick";
    user_.movePointer(150, 110);
    EXPECT_TRUE(eventually([&] {
        step();
        return at(4, 4) == colours.highlight;
    }));
    EXPECT_EQ(at(30, 11), colours.highlightText);
}

TEST_F(DesktopWindows, MessageAnswersItsButtonsAndKeys) {
    struct Case {
        const char* name;
        MessageButtons buttons;
        std::vector<int> keys;
        MessageAnswer answer;
    };
    const Case cases[] = {
        {"return", MessageButtons::okCancel, {Key::kReturn}, MessageAnswer::ok},
        {"escape", MessageButtons::okCancel, {Key::kEscape}, MessageAnswer::cancel},
        {"escape, one button", MessageButtons::ok, {Key::kEscape}, MessageAnswer::ok},
        {"tab", MessageButtons::yesNoCancel, {Key::kTab, Key::kReturn}, MessageAnswer::no},
        {"left", MessageButtons::yesNoCancel, {Key::kLeft, Key::kReturn}, MessageAnswer::cancel}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::optional<MessageAnswer> answer;
        auto dialog = MessageDialog::open(owner_->nativeId(), "Murmelon", "The text.", c.buttons, letters_,
                                          [&](MessageAnswer a) { answer = a; });
        user_.movePointer(
            30, 30); // no window manager: the dialog lies in the corner, and the pointer says whose keys
        for (const int key : c.keys) {
            user_.type(key);
        }
        EXPECT_TRUE(eventually([&] { return !dialog->poll(); }));
        EXPECT_EQ(answer, c.answer);
        EXPECT_FALSE(dialog->poll());
    }
}

TEST_F(DesktopWindows, MessageAnswersTheMouse) {
    std::optional<MessageAnswer> answer;
    std::unique_ptr<MessageDialog> dialog;
    dialog = MessageDialog::open(0, "Murmelon", "Save?", MessageButtons::yesNoCancel, letters_,
                                 [&](MessageAnswer a) {
                                     answer = a;
                                     dialog.reset();
                                 });
    // Three buttons of 80 pixels with 8 between, from the right edge: the middle one is "No".
    const Point no{32 + 24 + 80 + 8 + 30, 16 + 64 + 10};
    user_.movePointer(no.x, no.y);
    user_.click(1);
    EXPECT_TRUE(eventually([&] { return !dialog || !dialog->poll(); }));
    EXPECT_EQ(answer, MessageAnswer::no);
}

} // namespace
