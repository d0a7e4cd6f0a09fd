#include "model/Preferences.h"

#include "platform/MemoryRecord.h"

#include <gtest/gtest.h>

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
