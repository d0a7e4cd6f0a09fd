// Runs the built `murmelon` command as a user would.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace CommandRun {

struct Result {
    int status = -1;
    std::string output;
    std::string errors;
};

inline constexpr const char* kOutput = ".output";

// An output that takes nothing, and what the system says of it.
inline constexpr const char* kFull = "/dev/full";
#if defined(_WIN32)
inline constexpr const char* kFullError = "Bad file descriptor"; // opened for reading: there is no such device
#else
inline constexpr const char* kFullError = "No space left on device";
#endif

std::string contentsOf(const std::filesystem::path& path);

// In the environment of the commands to come.
void setVariable(const char* name, const std::filesystem::path& value);

// A folder of the test's own, in which commands run.
class CommandTest : public testing::Test {
protected:
    CommandTest();

    void SetUp() override;
    void TearDown() override;

    void write(const std::string& name, const std::string& contents) const;
    std::string read(const std::string& name) const;

    // Results go to the file `output`.
    Result run(const std::vector<std::string>& arguments, const std::string& input = {},
               const std::string& output = kOutput) const;

    std::filesystem::path folder_;
};

} // namespace CommandRun
