#include "platform/AtomicFileWrite.h"
#include "platform/FileRead.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>

#if !defined(_WIN32)
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#endif

namespace fs = std::filesystem;

namespace {

#if defined(_WIN32)
constexpr const char* kNoFile = "Permission denied"; // what opening a folder says
#else
constexpr const char* kNoFile = "Is a directory";
#endif

class AtomicFileWriteTest : public testing::Test {
protected:
    fs::path folder_ =
        fs::temp_directory_path() / fs::path(testing::UnitTest::GetInstance()->current_test_info()->name());

    void SetUp() override { fs::create_directory(folder_); }
    void TearDown() override { fs::remove_all(folder_); }

    static std::string contentsOf(const fs::path& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::ptrdiff_t filesInFolder() const {
        return std::distance(fs::directory_iterator(folder_), fs::directory_iterator());
    }
};

} // namespace

TEST_F(AtomicFileWriteTest, replacesContentsAndKeepsPermissions) {
    const auto path = folder_ / "patch.txt";
    Platform::atomicFileWrite(path, std::string_view("one\0two", 7));
    EXPECT_EQ(contentsOf(path), std::string("one\0two", 7));
    const auto ownersAlone = fs::perms::owner_read | fs::perms::owner_write;
    fs::permissions(path, ownersAlone);
    const auto given = fs::status(path).permissions(); // not every system tells the owner from the others
    Platform::atomicFileWrite(path, "three");
    EXPECT_EQ(contentsOf(path), "three");
    EXPECT_EQ(fs::status(path).permissions(), given);
    EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(AtomicFileWriteTest, aFailingWriterHarmsNothingAndLeavesNothing) {
    const auto path = folder_ / "sound.wav";
    Platform::atomicFileWrite(path, "old");
    EXPECT_THROW(Platform::atomicFileWrite(path,
                                           [](const fs::path& temporary) {
                                               EXPECT_EQ(temporary.extension(), ".wav");
                                               std::ofstream(temporary) << "half";
                                               throw std::runtime_error("disk full");
                                           }),
                 std::runtime_error);
    EXPECT_EQ(contentsOf(path), "old");
    EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(AtomicFileWriteTest, saysWhichFileCouldNotBeWritten) {
    const auto path = folder_ / "missing" / "file";
    try {
        Platform::atomicFileWrite(path, "text");
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), "Could not write " + path.string() + ": No such file or directory");
    }
    // A folder stands where the file should go.
    fs::create_directory(folder_ / "folder");
    EXPECT_THROW(Platform::atomicFileWrite(folder_ / "folder", "text"), std::runtime_error);
    EXPECT_EQ(filesInFolder(), 1); // nothing is left beside it
}

TEST_F(AtomicFileWriteTest, whatWasWrittenIsRead) {
    std::string contents("\0\r\n\x1A\xFF", 5);
    contents.resize(200'000, 'x');
    const auto path = folder_ / "J\xC3\xB6rg";
    Platform::atomicFileWrite(path, contents);
    EXPECT_EQ(Platform::readFile(path), contents);
    Platform::atomicFileWrite(path, "");
    EXPECT_EQ(Platform::readFile(path), "");
    for (const auto& [unreadable, why] : {std::pair(folder_ / "missing", "No such file or directory"),
                                          std::pair(folder_, kNoFile)}) {
        try {
            Platform::readFile(unreadable);
            FAIL();
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(error.what(), "Could not read " + unreadable.string() + ": " + why);
        }
    }
}

#if !defined(_WIN32)

TEST_F(AtomicFileWriteTest, takesNamesOfAnyLength) {
    const auto path = folder_ / (std::string(250, 'n') + ".kvmp");
    Platform::atomicFileWrite(path, "text");
    EXPECT_EQ(contentsOf(path), "text");
    EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(AtomicFileWriteTest, writesToWhatALinkLeadsTo) {
    fs::create_directory(folder_ / "kept");
    Platform::atomicFileWrite(folder_ / "kept" / "file", "old");
    fs::create_symlink("kept/file", folder_ / "link");
    fs::create_symlink("link", folder_ / "second");
    Platform::atomicFileWrite(folder_ / "second", "new");
    EXPECT_EQ(contentsOf(folder_ / "kept" / "file"), "new");
    EXPECT_TRUE(fs::is_symlink(folder_ / "link"));
    EXPECT_TRUE(fs::is_symlink(folder_ / "second"));
    EXPECT_EQ(filesInFolder(), 3);

    fs::create_symlink("nowhere", folder_ / "third");
    Platform::atomicFileWrite(folder_ / "third", "text");
    EXPECT_EQ(contentsOf(folder_ / "third"), "text");
}

TEST_F(AtomicFileWriteTest, leavesPipesAndDevicesInTheirPlaces) {
    const auto pipe = folder_ / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
    Platform::atomicFileWrite(pipe, "text");
    std::array<char, 10> arrived{};
    EXPECT_EQ(read(reader, arrived.data(), arrived.size()), 4);
    EXPECT_STREQ(arrived.data(), "text");
    close(reader);
    EXPECT_TRUE(fs::is_fifo(pipe));
    EXPECT_EQ(filesInFolder(), 1);
}

#endif
