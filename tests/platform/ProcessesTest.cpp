// What other processes and the environment have to do with files of the user's.
#include "platform/SharedFile.h"
#include "platform/UserFolders.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace Platform;
namespace fs = std::filesystem;

// Two processes with two threads each: whatever one adds, no other may lose.
TEST(Processes, loseNoChangeOfAnyProcessOrThread) {
    constexpr int kTimes = 60;
    const fs::path folder = fs::temp_directory_path() / ("murmelon-processes-" + std::to_string(getpid()));
    const fs::path file = folder / "preferences";
    const auto append = [&](char letter) {
        SharedFile record(file, std::chrono::seconds(60));
        for (int i = 0; i < kTimes; ++i) {
            record.update(
                [&](const std::string& contents) { return SharedRecord::Replacement{contents + letter}; });
        }
    };
    std::vector<pid_t> children;
    for (int process = 0; process < 2; ++process) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            std::thread thread([&] { append(static_cast<char>('a' + 2 * process)); });
            append(static_cast<char>('b' + 2 * process));
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
    const std::string contents = SharedFile(file).read();
    for (const char letter : {'a', 'b', 'c', 'd'}) {
        EXPECT_EQ(std::count(contents.begin(), contents.end(), letter), kTimes) << letter;
    }
    fs::remove_all(folder);
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
