// Runs the built `murmelon` command as a user would.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace CommandRun {

struct Result {
    int status = -1;
    std::string output;
    std::string errors;
};

inline std::string contentsOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A folder of the test's own, in which commands run.
class CommandTest : public testing::Test {
protected:
    std::filesystem::path folder_ = std::filesystem::temp_directory_path() /
                                    ("murmelon-tool-" + std::to_string(getpid()) + "-" +
                                     testing::UnitTest::GetInstance()->current_test_info()->name());

    // Settings of whoever runs the tests stay out of it.
    void SetUp() override {
        std::filesystem::create_directories(folder_);
        setenv("XDG_CONFIG_HOME", folder_.c_str(), 1);
        setenv("XDG_DATA_HOME", folder_.c_str(), 1);
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    void write(const std::string& name, const std::string& contents) const {
        std::ofstream(folder_ / name, std::ios::binary) << contents;
    }
    std::string read(const std::string& name) const { return contentsOf(folder_ / name); }

    // Results go to the file `output`.
    Result run(const std::vector<std::string>& arguments, const std::string& input = {},
               const std::string& output = ".output") const {
        write(".input", input);
        std::string command = "cd ";
        command.append(quoted(folder_.string())).append(" && ").append(quoted(MURMELON_COMMAND));
        for (const std::string& argument : arguments) {
            command.append(" ").append(quoted(argument));
        }
        const int status = std::system((command + " < .input > " + output + " 2> .errors").c_str());
        return {WEXITSTATUS(status), read(".output"), read(".errors")};
    }

private:
    static std::string quoted(const std::string& text) {
        std::string result = "'";
        for (const char c : text) {
            if (c == '\'') {
                result += "'\\'"; // closes, an escaped quote, opens again
            }
            result += c;
        }
        return result += "'";
    }
};

} // namespace CommandRun
