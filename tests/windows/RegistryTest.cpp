#include "platform/UserFolders.h"
#include "platform/win32/RegistryValue.h"
#include "platform/win32/SystemText.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace Platform;

namespace {

constexpr const char* kKey = "Software\\Korvanta\\MurmelonTest\\deep";
constexpr const wchar_t* kRoot = L"Software\\Korvanta\\MurmelonTest";
constexpr int kTimes = 60;

class RegistryTest : public testing::Test {
protected:
    void SetUp() override { clear(); }
    void TearDown() override { clear(); }

    static void clear() { RegDeleteTreeW(HKEY_CURRENT_USER, kRoot); }
    static bool keyExists() {
        HKEY key = nullptr;
        const bool exists = RegOpenKeyExW(HKEY_CURRENT_USER, kRoot, 0, KEY_READ, &key) == ERROR_SUCCESS;
        if (exists) {
            RegCloseKey(key);
        }
        return exists;
    }
};

void append(char letter) {
    RegistryValue record(kKey, "shared", std::chrono::seconds(60));
    for (int i = 0; i < kTimes; ++i) {
        record.update(
            [&](const std::string& contents) { return SharedRecord::Replacement{contents + letter}; });
    }
}

} // namespace

TEST_F(RegistryTest, storesAndSetsAside) {
    RegistryValue record(kKey, "value");
    EXPECT_EQ(record.read(), "");
    EXPECT_FALSE(keyExists()); // reading makes nothing
    std::string bytes("a\0\r\n\xFF", 5);
    bytes.resize(20'000, 'x');
    record.update([&](const std::string& contents) {
        EXPECT_EQ(contents, "");
        return SharedRecord::Replacement{bytes};
    });
    EXPECT_EQ(RegistryValue(kKey, "value").read(), bytes);
    EXPECT_THROW(record.update(
                     [](const std::string&) -> SharedRecord::Replacement { throw std::runtime_error("no"); }),
                 std::runtime_error);
    EXPECT_EQ(record.read(), bytes);
    record.update([](const std::string&) { return SharedRecord::Replacement{"two", true}; });
    EXPECT_EQ(record.read(), "two");
    EXPECT_EQ(RegistryValue(kKey, "value.damaged").read(), bytes);
}

TEST_F(RegistryTest, failsWhenSomebodyHoldsTheLockTooLong) {
    RegistryValue record(kKey, "value");
    const auto refused = [] {
        RegistryValue another(kKey, "value", std::chrono::milliseconds(20));
        EXPECT_THROW(another.update([](const std::string&) { return SharedRecord::Replacement{"lost"}; }),
                     std::runtime_error);
        EXPECT_EQ(another.read(), ""); // reading waits for nobody
    };
    record.update([&](const std::string&) {
        refused();
        std::thread(refused).join();
        return SharedRecord::Replacement{"kept"};
    });
    EXPECT_EQ(record.read(), "kept");
}

TEST_F(RegistryTest, refusesAValueOfAnotherKind) {
    RegistryValue record(kKey, "value");
    record.update([](const std::string&) { return SharedRecord::Replacement{"x"}; });
    RegSetKeyValueW(HKEY_CURRENT_USER, toWide(kKey).c_str(), L"value", REG_SZ, L"text", 10);
    EXPECT_THROW(record.read(), std::runtime_error);
}

// Run by the test below in a process of its own.
TEST(RegistryProcess, DISABLED_appends) {
    append('c');
}

TEST_F(RegistryTest, losesNoChangeOfAnyProcessOrThread) {
    wchar_t program[1024];
    GetModuleFileNameW(nullptr, program, 1024);
    std::wstring command = L"\"" + std::wstring(program) +
                           L"\" --gtest_also_run_disabled_tests --gtest_filter=RegistryProcess.*";
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION child{};
    ASSERT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                               &child));
    std::thread thread([] { append('a'); });
    append('b');
    thread.join();
    EXPECT_EQ(WaitForSingleObject(child.hProcess, 60'000), WAIT_OBJECT_0);
    DWORD status = 1;
    GetExitCodeProcess(child.hProcess, &status);
    EXPECT_EQ(status, 0u);
    CloseHandle(child.hProcess);
    CloseHandle(child.hThread);
    const std::string contents = RegistryValue(kKey, "shared").read();
    for (const char letter : {'a', 'b', 'c'}) {
        EXPECT_EQ(std::count(contents.begin(), contents.end(), letter), kTimes) << letter;
    }
}

TEST(UserFolders, areTheUsersAndThisPrograms) {
    EXPECT_TRUE(settingsFolder().is_absolute());
    EXPECT_EQ(settingsFolder().filename(), "Murmelon");
    EXPECT_EQ(supportFolder().filename(), "Korvanta");
    EXPECT_TRUE(std::filesystem::exists(binaryFolder() / "test_windows.exe"));
}
