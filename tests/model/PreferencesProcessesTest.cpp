// Preferences that two processes store at once.
#include "model/Preferences.h"

#include "platform/SharedFile.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>

using namespace Model;

TEST(Preferences, noProcessLosesAnothersEntries) {
    namespace fs = std::filesystem;
    constexpr int kEntries = 40;
    const fs::path folder = fs::temp_directory_path() / ("murmelon-preferences-" + std::to_string(getpid()));
    const auto store = [&](const std::string& prefix) {
        Platform::SharedFile file(folder / "preferences", std::chrono::seconds(60));
        Preferences preferences(file);
        for (int i = 0; i < kEntries; ++i) {
            preferences.set(prefix + std::to_string(i), std::to_string(i));
            preferences.set("contended", prefix);
        }
    };
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        store("child");
        _exit(0);
    }
    store("parent");
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    Platform::SharedFile file(folder / "preferences");
    const Preferences preferences(file);
    for (const std::string prefix : {"child", "parent"}) {
        for (int i = 0; i < kEntries; ++i) {
            EXPECT_EQ(preferences.get(prefix + std::to_string(i)), std::to_string(i)) << prefix;
        }
    }
    fs::remove_all(folder);
}
