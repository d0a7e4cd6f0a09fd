#include "platform/FileDialog.h"
#include "platform/MessageDialog.h"
#include "platform/OpenLink.h"
#include "platform/linux/FileChooser.h"

#include "FakePortal.h"
#include "XServer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Platform;
using namespace Testing;
namespace fs = std::filesystem;

namespace {

// A folder of programs that the test has written stands before all others in PATH, and no bus is known.
class FileDialogTest : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(folder_);
        path_ = std::getenv("PATH");
        // The shell that runs the fakes is named by its path; real dialog programs are out of reach.
        setenv("PATH", folder_.c_str(), 1);
        unsetenv("DBUS_SESSION_BUS_ADDRESS");
        unsetenv("XDG_RUNTIME_DIR");
        unsetenv("XDG_CURRENT_DESKTOP");
    }
    void TearDown() override {
        setenv("PATH", path_.c_str(), 1);
        fs::remove_all(folder_);
    }

    // It writes the words that it was given into NAME.words, one a line.
    void program(const std::string& name, const std::string& script) {
        const fs::path file = folder_ / name;
        std::ofstream(file) << "#!/bin/sh\nprintf '%s\\n' \"$@\" > " << file.string() << ".words\n"
                            << script << "\n";
        fs::permissions(file, fs::perms::owner_all);
    }
    std::string wordsOf(const std::string& name) {
        std::ifstream file(folder_ / (name + ".words"));
        return {std::istreambuf_iterator<char>(file), {}};
    }
    FileDialogAnswer ask(const FileDialogRequest& request) {
        FileDialogAnswer answer;
        int answers = 0;
        const auto dialog = FileDialog::open(request, [&](const FileDialogAnswer& a) {
            answer = a;
            ++answers;
        });
        EXPECT_EQ(answers, 0);
        EXPECT_TRUE(eventually([&] { return !dialog->poll(); }));
        EXPECT_FALSE(dialog->poll());
        EXPECT_EQ(answers, 1);
        return answer;
    }

    fs::path folder_ = fs::temp_directory_path() / ("murmelon-programs-" + std::to_string(getpid()));
    std::string path_;
    FileDialogRequest save_{.kind = FileDialogRequest::Kind::save,
                            .title = "Save `this`",
                            .folder = "/tmp",
                            .fileName = "My $Patch.kvmp",
                            .filters = {{"Patches", {"*.kvmp", "*.KVMP"}}, {"All Files", {"*"}}}};
};

TEST_F(FileDialogTest, UsesTheProgramThatIsThere) {
    struct Case {
        const char* name;
        const char* zenity; // null: not installed
        const char* kdialog;
        const char* desktop;
        const char* file;
        const char* error;
    };
    const char* const none = "No file dialog can be shown: install zenity or kdialog, or a desktop portal "
                             "(xdg-desktop-portal)";
    const Case cases[] = {
        {"nothing installed", nullptr, nullptr, "", "", none},
        {"zenity", "echo '/tmp/a b.kvmp'", "echo /no", "", "/tmp/a b.kvmp", ""},
        {"kdialog alone", nullptr, "echo /tmp/k", "", "/tmp/k", ""},
        {"both on KDE", "echo /no", "echo /tmp/k", "ubuntu:KDE", "/tmp/k", ""},
        {"zenity cancelled", "exit 1", "echo /no", "", "", ""},
        {"zenity without a display", "echo broken >&2; exit 255", "echo /tmp/k", "", "/tmp/k", ""},
        {"all broken", "kill -9 $$", "exit 3", "", "", none},
        {"two lines in a name", "printf '/tmp/a\\nb\\n'", nullptr, "", "/tmp/a\nb", ""}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove_all(folder_);
        fs::create_directories(folder_);
        setenv("XDG_CURRENT_DESKTOP", c.desktop, 1);
        if (c.zenity) {
            program("zenity", c.zenity);
        }
        if (c.kdialog) {
            program("kdialog", c.kdialog);
        }
        const FileDialogAnswer answer = ask(save_);
        EXPECT_EQ(answer.file, c.file);
        EXPECT_EQ(answer.error, c.error);
    }
}

TEST_F(FileDialogTest, TellsTheProgramWhatToAsk) {
    program("zenity", "exit 1");
    ask(save_);
    EXPECT_EQ(wordsOf("zenity"), "--file-selection\n--title=Save `this`\n--save\n--confirm-overwrite\n"
                                 "--filename=/tmp/My $Patch.kvmp\n--file-filter=Patches | *.kvmp *.KVMP\n"
                                 "--file-filter=All Files | *\n");
    FileDialogRequest open;
    open.title = "Open";
    open.folder = "/tmp";
    ask(open);
    EXPECT_EQ(wordsOf("zenity"), "--file-selection\n--title=Open\n--filename=/tmp/\n");
    fs::remove(folder_ / "zenity");
    program("kdialog", "exit 1");
    save_.parent = 77;
    ask(save_);
    EXPECT_EQ(wordsOf("kdialog"),
              "--title\nSave `this`\n--attach\n77\n--getsavefilename\n/tmp/My $Patch.kvmp\n"
              "*.kvmp *.KVMP|Patches\n*|All Files\n");
}

TEST_F(FileDialogTest, TakesTheDialogOffTheScreenWithIt) {
    program("zenity", "echo $$ > " + (folder_ / "pid").string() + "; exec /bin/sleep 100");
    auto dialog = FileDialog::open(save_, [](const FileDialogAnswer&) { ADD_FAILURE(); });
    pid_t process = 0;
    EXPECT_TRUE(eventually([&] {
        EXPECT_TRUE(dialog->poll());
        std::ifstream(folder_ / "pid") >> process;
        return process != 0;
    }));
    dialog.reset();
    EXPECT_NE(kill(process, 0), 0);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "no zombie is left";
}

TEST_F(FileDialogTest, AsksThePortalFirst) {
    program("zenity", "echo /tmp/zenity");
    struct Case {
        const char* name;
        FakePortal::Answer answer;
        const char* file;
    };
    const Case cases[] = {
        {"chosen", {0, "file:///tmp/Tr%C3%A4ume%20100%25.kvmp"}, "/tmp/Tr\xC3\xA4ume 100%.kvmp"},
        {"cancelled", {1, ""}, ""},
        {"failed", {2, ""}, "/tmp/zenity"},
        {"not a file", {0, "https://example.com/a"}, "/tmp/zenity"},
        {"refused", {FakePortal::kRefuses, ""}, "/tmp/zenity"}};
    setenv("PATH", (folder_.string() + ":" + path_).c_str(), 1);
    const PrivateBus bus;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FakePortal portal(c.answer);
        const FileDialogAnswer answer = ask(save_);
        EXPECT_EQ(answer.file, c.file);
        EXPECT_EQ(answer.error, "");
        EXPECT_EQ(portal.question(), "SaveFile|Save `this`|current_folder=/tmp|current_name=My $Patch.kvmp|"
                                     "filters=Patches *.kvmp *.KVMP, All Files *");
    }
    EXPECT_EQ(ask(save_).file, "/tmp/zenity") << "a bus without a portal";
}

TEST_F(FileDialogTest, ErrorsWithoutAnEditorAreShownByAProgram) {
    setenv("PATH", (folder_.string() + ":" + path_).c_str(), 1);
    program("zenity", "");
    testing::internal::CaptureStderr();
    showError("Murmelon", "Error: <b> & $HOME");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Murmelon: Error: <b> & $HOME\n");
    const std::string words = "--error\n--no-markup\n--title\nMurmelon\n--text\nError: <b> & $HOME\n";
    EXPECT_TRUE(eventually([&] { return wordsOf("zenity") == words; }));
}

TEST(FileAddress, IsDecoded) {
    struct Case {
        const char* address;
        const char* path;
    };
    const Case cases[] = {{"file:///a/b", "/a/b"},
                          {"file://localhost/a", "/a"},
                          {"file:///%41%zz%4", "/A%zz%4"},
                          {"http://a/b", ""},
                          {"file:", ""},
                          {"file://host", ""},
                          {"file:///a%2Fb", "/a/b"}};
    for (const Case& c : cases) {
        EXPECT_EQ(pathOfFileAddress(c.address), c.path) << c.address;
    }
}

TEST_F(FileDialogTest, LinksGoToTheDesktopWithoutAShell) {
    const auto problem = [](const std::string& link) {
        try {
            openLink(link);
        } catch (const std::runtime_error& error) {
            return std::string(error.what());
        }
        return std::string();
    };
    EXPECT_EQ(problem("https://example.com"), "Could not open https://example.com: install xdg-utils");
    setenv("PATH", (folder_.string() + ":" + path_).c_str(), 1);
    program("xdg-open", "");
    EXPECT_EQ(problem("https://example.com/?a=$(x)&b='"), "");
    EXPECT_TRUE(eventually([&] { return wordsOf("xdg-open") == "https://example.com/?a=$(x)&b='\n"; }));
    for (const char* link : {"--help", "javascript:x", "", "https://a\nb", "relative/path"}) {
        EXPECT_EQ(problem(link), std::string("Not a link: ") + link);
    }
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "no zombie is left";
}

} // namespace
