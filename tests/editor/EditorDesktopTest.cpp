#include "editor/EditorDesktop.h"

#include "BlockLetters.h"
#include "XServer.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;
using namespace Testing;

namespace {

// A folder with a fake zenity is all there is of a desktop.
class EditorDesktop : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(folder_);
        setenv("PATH", folder_.c_str(), 1);
        unsetenv("DBUS_SESSION_BUS_ADDRESS");
        unsetenv("XDG_RUNTIME_DIR");
        unsetenv("XDG_CURRENT_DESKTOP");
    }
    void TearDown() override {
        setenv("PATH", path_.c_str(), 1);
        fs::remove_all(folder_);
    }
    // It prints the path, and writes its last word to "asked".
    void zenityAnswers(const fs::path& path) const {
        std::ofstream(folder_ / "zenity") << "#!/bin/sh\nfor word; do :; done\nprintf '%s' \"$word\" > '"
                                          << (folder_ / "asked").string() << "'\necho '" << path.string() << "'\n";
        fs::permissions(folder_ / "zenity", fs::perms::owner_all);
    }

    const std::string path_ = std::getenv("PATH");
    const fs::path folder_ = fs::temp_directory_path() / ("murmelon-desktop-" + std::to_string(getpid()));
    const XServer server_;
    BlockLetters letters_;
};

} // namespace

TEST_F(EditorDesktop, BeginsWhereTheLastFileLay) {
    std::ofstream(folder_ / "there.kvmc") << "text";
    const std::string inFolder = "--filename=" + folder_.string() + "/";
    for (const fs::path& proposed : {folder_, folder_ / "there.kvmc", folder_ / "gone.kvmc"}) {
        zenityAnswers("/some/file");
        fs::path chosen;
        Shell::EditorDesktop desktop(letters_, [](const std::string& message) { FAIL() << message; });
        Bridge::FileQuestion question;
        question.proposed = proposed;
        desktop.chooseFile(question, [&](const fs::path& file) { chosen = file; });
        EXPECT_TRUE(eventually([&] {
            desktop.poll();
            return !chosen.empty();
        }));
        std::string asked;
        std::getline(std::ifstream(folder_ / "asked"), asked);
        EXPECT_EQ(asked, inFolder) << proposed;
    }
}

// A name without the extension gets it, and then the file dialog has not asked whether what is there may go.
TEST_F(EditorDesktop, SavesUnderTheNameThatIsMeant) {
    struct Case {
        const char* typed;
        std::vector<int> keys; // answers to a question
        const char* saved;     // empty: nothing
        const char* failure;
    };
    const Case cases[] = {
        {"new", {}, "new.kvmp", ""},
        {"new.kvmp", {}, "new.kvmp", ""},
        {"new.txt", {}, "new.txt", ""},
        {"Take 1.5", {}, "Take 1.5.kvmp", ""},
        {"Mr. Smith", {}, "Mr. Smith.kvmp", ""},
        {"bare", {}, "bare", ""}, // is there, and the dialog has asked
        {"old.kvmp", {}, "old.kvmp", ""},
        {"old", {Key::kReturn}, "", ""},
        {"old", {Key::kEscape}, "", ""},
        {"old", {Key::kTab, Key::kReturn}, "old.kvmp", ""},
        {"fails", {}, "", "fails.kvmp"},
        {"fails2", {Key::kTab, Key::kReturn}, "", "fails2.kvmp"},
    };
    Client user;
    for (const char* there : {"bare", "old.kvmp", "fails2.kvmp"}) {
        std::ofstream(folder_ / there) << "old";
    }
    for (const Case& c : cases) {
        SCOPED_TRACE(c.typed);
        zenityAnswers(folder_ / c.typed);
        std::string saved;
        std::string failure;
        Shell::EditorDesktop desktop(letters_, [&](const std::string& message) { failure = message; });
        Bridge::FileQuestion question;
        question.kind = Bridge::FileQuestion::Kind::save;
        question.types = {{"Patch", ".kvmp"}, {"All Files", ""}};
        desktop.chooseFile(question, [&](const fs::path& file) {
            if (std::string(c.failure).empty()) {
                saved = file.filename().string();
            } else {
                throw std::runtime_error(file.filename().string());
            }
        });
        const auto root = user.connection.screen().root;
        const auto windows = user.children(root).size();
        if (!c.keys.empty()) {
            EXPECT_TRUE(eventually([&] {
                desktop.poll();
                return user.children(root).size() > windows;
            }));
            user.movePointer(30, 30); // no window manager: the box lies in the corner
            for (const int key : c.keys) {
                user.type(key);
            }
            EXPECT_TRUE(eventually([&] {
                desktop.poll();
                return user.children(root).size() == windows;
            }));
        } else {
            EXPECT_TRUE(eventually([&] {
                desktop.poll();
                return !saved.empty() || !failure.empty();
            }));
        }
        EXPECT_EQ(saved, c.saved);
        EXPECT_EQ(failure, c.failure);
    }
}
