#include "platform/Clipboard.h"
#include "platform/linux/XSelection.h"

#include "XServer.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>

using namespace Platform;
using namespace Testing;

namespace {

namespace fs = std::filesystem;

// xclip plays the other program.
class ClipboardTest : public testing::Test {
protected:
    static void SetUpTestSuite() { server_ = new XServer(); }
    static void TearDownTestSuite() {
        delete server_;
        server_ = nullptr;
    }
    void SetUp() override {
        server_->use();
        file_ = fs::temp_directory_path() / ("murmelon-clipboard-" + std::to_string(getpid()));
    }
    void TearDown() override { fs::remove(file_); }

    std::string pastedElsewhere(const std::string& target) {
        const std::string command = "xclip -selection clipboard -o -t '" + target + "' 2>/dev/null";
        FILE* const pipe = popen(command.c_str(), "r");
        std::string text;
        for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe)) {
            text += static_cast<char>(c);
        }
        return pclose(pipe) == 0 ? text : "(nothing)";
    }
    void copyElsewhere(const std::string& text, const std::string& target) {
        std::ofstream(file_) << text;
        // It goes on in the background, and may do so before it has taken the selection.
        const std::string command =
            "xclip -selection clipboard -i -t '" + target + "' " + file_.string() + " >/dev/null 2>&1";
        ASSERT_EQ(std::system(command.c_str()), 0);
    }

    static XServer* server_;
    fs::path file_;
    std::unique_ptr<Clipboard> clipboard_ = Clipboard::open();
};

XServer* ClipboardTest::server_ = nullptr;

std::string longText() {
    std::string text;
    while (text.size() < 1'500'000) {
        text += "line " + std::to_string(text.size()) + "\n";
    }
    return text;
}

TEST_F(ClipboardTest, OtherProgramsPasteWhatWeCopy) {
    const std::string umlauts = "Tr\xC3\xA4ume \xE2\x82\xAC 5";
    struct Case {
        std::string text;
        const char* target;
        std::string pasted;
    };
    const Case cases[] = {{umlauts, "UTF8_STRING", umlauts},
                          {umlauts, "TEXT", umlauts},
                          {umlauts, "text/plain;charset=utf-8", umlauts},
                          {umlauts, "STRING", "Tr\xE4ume ? 5"},
                          {umlauts, "image/png", "(nothing)"},
                          {"", "UTF8_STRING", ""},
                          {longText(), "UTF8_STRING", longText()}};
    for (const Case& c : cases) {
        clipboard_->setText(c.text);
        EXPECT_TRUE(pastedElsewhere(c.target) == c.pasted) << c.target << ", " << c.text.size() << " bytes";
        EXPECT_EQ(clipboard_->text(), c.text);
    }
    EXPECT_NE(pastedElsewhere("TARGETS").find("UTF8_STRING\n"), std::string::npos);
}

TEST_F(ClipboardTest, PastesWhatOtherProgramsCopy) {
    struct Case {
        std::string text;
        const char* target;
        std::string pasted;
    };
    const Case cases[] = {{"gr\xC3\xBC\xC3\x9F dich", "UTF8_STRING", "gr\xC3\xBC\xC3\x9F dich"},
                          {"gr\xFC\xDF dich", "STRING", "gr\xC3\xBC\xC3\x9F dich"},
                          {"one\r\ntwo\rthree\n", "UTF8_STRING", "one\ntwo\rthree\n"},
                          {"not text", "image/png", ""},
                          {longText(), "UTF8_STRING", longText()}};
    for (const Case& c : cases) {
        clipboard_->setText("ours");
        copyElsewhere(c.text, c.target);
        EXPECT_TRUE(eventually([&] { return clipboard_->text() == c.pasted; }))
            << c.target << ", " << c.text.size() << " bytes";
    }
}

// Two instances in one host: neither polls while the other reads.
TEST_F(ClipboardTest, InstancesOfOneProgramExchangeText) {
    const auto other = Clipboard::open();
    clipboard_->setText(longText());
    EXPECT_TRUE(other->text() == longText());
    other->setText("second");
    EXPECT_EQ(clipboard_->text(), "second");
}

TEST_F(ClipboardTest, DoesNotWaitForeverForAProgramThatHangs) {
    Client hanging;
    const auto window = hanging.openWindow(24, 0, 0, 10, 10);
    xcb_set_selection_owner(hanging.connection, window, SelectionAtoms(hanging.connection).clipboard,
                            XCB_CURRENT_TIME);
    hanging.connection.sync();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(readSelection(std::chrono::milliseconds(100)), std::nullopt);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

// A program that ends its own life leaves the text to the desktop's manager.
TEST_F(ClipboardTest, LeavesTheTextToTheManager) {
    Client manager;
    const SelectionAtoms atoms(manager.connection);
    const auto window = manager.openWindow(24, 0, 0, 10, 10);
    xcb_set_selection_owner(manager.connection, window, atoms.clipboardManager, XCB_CURRENT_TIME);
    manager.connection.sync();
    clipboard_->setText("kept");
    std::optional<std::string> saved;
    std::thread serving([&] {
        const auto event = manager.waitFor(XCB_SELECTION_REQUEST);
        saved = readSelection(std::chrono::seconds(1));
        auto request = eventAs<xcb_selection_request_event_t>(*event);
        char notice[32] = {};
        auto& answer = reinterpret_cast<xcb_selection_notify_event_t&>(notice);
        answer.response_type = XCB_SELECTION_NOTIFY;
        answer.requestor = request.requestor;
        answer.selection = request.selection;
        answer.target = request.target;
        xcb_send_event(manager.connection, 0, request.requestor, 0, notice);
        manager.connection.sync();
    });
    clipboard_.reset();
    serving.join();
    EXPECT_EQ(saved, "kept");
}

TEST_F(ClipboardTest, WorksWithinTheProgramWithoutDisplay) {
    setenv("DISPLAY", ":4711", 1);
    EXPECT_EQ(clipboard_->text(), "");
    clipboard_->setText("alone");
    EXPECT_EQ(clipboard_->text(), "alone");
}

} // namespace
