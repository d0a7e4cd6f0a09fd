#include "platform/SharedFile.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

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
