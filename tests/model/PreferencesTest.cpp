#include "model/Preferences.h"

#include "platform/MemoryRecord.h"
#include "platform/SharedFile.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

using namespace Model;

TEST(Preferences, keepsEntriesOfTextAndBytes) {
    Platform::MemoryRecord record;
    Preferences preferences(record);
    EXPECT_EQ(preferences.get("a"), std::nullopt);
    std::string bytes;
    for (int c = 0; c < 256; ++c) {
        bytes += static_cast<char>(c);
    }
    preferences.set("bytes", bytes);
    preferences.set("a name: {odd}", "text");
    preferences.set("empty", "");
    Preferences another(record);
    EXPECT_EQ(another.get("bytes"), bytes);
    EXPECT_EQ(another.get("a name: {odd}"), "text");
    EXPECT_EQ(another.get("empty"), "");
    another.set("bytes", "new");
    another.remove("empty");
    another.remove("never there");
    EXPECT_EQ(preferences.get("bytes"), "new");
    EXPECT_EQ(preferences.get("empty"), std::nullopt);
    EXPECT_EQ(preferences.get("a name: {odd}"), "text");
}

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

TEST(Preferences, setsADamagedRecordAsideAndSaysSoOnce) {
    for (const std::string damaged : {"MurmelonPreferences: { a: \"x", "}", "Other: { }", "a: 1",
                                      "MurmelonPreferences: { a: \"\\q\" }"}) {
        Platform::MemoryRecord record(damaged);
        std::vector<std::string> reports;
        Preferences preferences(record, [&](const std::string& message) { reports.push_back(message); });
        EXPECT_EQ(preferences.get("a"), std::nullopt) << damaged;
        preferences.set("a", "1");
        EXPECT_EQ(preferences.get("a"), "1");
        EXPECT_EQ(record.setAside(), damaged);
        EXPECT_EQ(reports.size(), 1u) << damaged;
    }
}
