#include "platform/SharedFile.h"
#include "platform/UserFolders.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <thread>
#include <vector>

using namespace Platform;
namespace fs = std::filesystem;

namespace {

class SharedFileTest : public testing::Test {
protected:
    fs::path folder_ =
        fs::temp_directory_path() / ("murmelon-" + std::to_string(getpid()) + "-" +
                                     testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::path file_ = folder_ / "deep" / "preferences";

    void SetUp() override { fs::remove_all(folder_); }
    void TearDown() override { fs::remove_all(folder_); }

    void append(char letter, int times) const {
        SharedFile record(file_, std::chrono::seconds(60));
        for (int i = 0; i < times; ++i) {
            record.update(
                [&](const std::string& contents) { return SharedRecord::Replacement{contents + letter}; });
        }
    }
};

} // namespace

TEST_F(SharedFileTest, storesAndSetsAside) {
    SharedFile record(file_);
    EXPECT_EQ(record.read(), "");
    EXPECT_FALSE(fs::exists(folder_)); // reading makes nothing
    record.update([](const std::string& contents) {
        EXPECT_EQ(contents, "");
        return SharedRecord::Replacement{"one"};
    });
    EXPECT_EQ(SharedFile(file_).read(), "one");
    EXPECT_THROW(record.update(
                     [](const std::string&) -> SharedRecord::Replacement { throw std::runtime_error("no"); }),
                 std::runtime_error);
    EXPECT_EQ(record.read(), "one");
    record.update([](const std::string&) { return SharedRecord::Replacement{"two", true}; });
    EXPECT_EQ(record.read(), "two");
    EXPECT_EQ(SharedFile(fs::path(file_) += ".damaged").read(), "one");
}

TEST_F(SharedFileTest, failsWhenSomebodyHoldsTheLockTooLong) {
    SharedFile record(file_);
    record.update([&](const std::string&) {
        SharedFile another(file_, std::chrono::milliseconds(20));
        EXPECT_THROW(another.update([](const std::string&) { return SharedRecord::Replacement{"lost"}; }),
                     std::runtime_error);
        EXPECT_EQ(another.read(), ""); // reading waits for nobody
        return SharedRecord::Replacement{"kept"};
    });
    EXPECT_EQ(record.read(), "kept");
}

TEST_F(SharedFileTest, failsWhereItCannotWrite) {
    fs::create_directories(folder_);
    std::ofstream(folder_ / "deep") << "a file where the folder should be";
    SharedFile record(file_);
    EXPECT_THROW(record.update([](const std::string&) { return SharedRecord::Replacement{"x"}; }),
                 std::runtime_error);
}

// Two processes with two threads each: whatever one adds, no other may lose.
TEST_F(SharedFileTest, losesNoChangeOfAnyProcessOrThread) {
    constexpr int kTimes = 60;
    std::vector<pid_t> children;
    for (int process = 0; process < 2; ++process) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            std::thread thread([&] { append(static_cast<char>('a' + 2 * process), kTimes); });
            append(static_cast<char>('b' + 2 * process), kTimes);
            thread.join();
            _exit(0);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    const std::string contents = SharedFile(file_).read();
    for (const char letter : {'a', 'b', 'c', 'd'}) {
        EXPECT_EQ(std::count(contents.begin(), contents.end(), letter), kTimes) << letter;
    }
}

TEST(UserFolders, followTheEnvironment) {
    const auto restore = [](const char* name) {
        const char* value = std::getenv(name);
        return std::pair(std::string(name), value ? std::optional<std::string>(value) : std::nullopt);
    };
    const auto before = {restore("XDG_CONFIG_HOME"), restore("HOME")};
    setenv("HOME", "/home/somebody", 1);
    setenv("XDG_CONFIG_HOME", "/somewhere/else", 1);
    EXPECT_EQ(settingsFolder(), "/somewhere/else/Murmelon");
    setenv("XDG_CONFIG_HOME", "relative", 1);
    EXPECT_EQ(settingsFolder(), "/home/somebody/.config/Murmelon");
    unsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(settingsFolder(), "/home/somebody/.config/Murmelon");
    unsetenv("HOME");
    EXPECT_TRUE(settingsFolder().is_absolute());
    for (const auto& [name, value] : before) {
        value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
    }
}
