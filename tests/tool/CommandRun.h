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
    std::string read(const std::string& name) const { return contentsOf(folder_ / name); }

    Result run(const std::vector<std::string>& arguments, const std::string& input = {}) const;

    std::filesystem::path folder_;
};

} // namespace CommandRun
