#include "CommandRun.h"

#include <chrono>
#include <fstream>
#include <iterator>
#include <system_error>
#include <thread>
#include <utility>

#if defined(_WIN32)
#include <windows.h>

#include <stdexcept>
#else
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#endif

namespace CommandRun {

namespace fs = std::filesystem;

namespace {

fs::path pathOf(const std::string& utf8) {
    return std::u8string(utf8.begin(), utf8.end());
}

// The streams of a run, in its folder.
constexpr const char* kInput = ".input";
constexpr const char* kErrors = ".errors";

#if defined(_WIN32)

// As programs take their command line apart: backslashes count only before a quotation mark.
std::wstring quoted(const std::wstring& text) {
    std::wstring result = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : text) {
        result.append(c == L'"' ? backslashes + 1 : 0, L'\\');
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        result += c;
    }
    return result.append(backslashes, L'\\') + L'"';
}

HANDLE opened(const fs::path& path, DWORD access, DWORD disposition) {
    constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    const HANDLE file = CreateFileW(path.c_str(), access, kShared, &inherited, disposition, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        throw std::runtime_error("no file for a stream of the command");
    }
    return file;
}

int start(const fs::path& folder, const std::vector<std::string>& words, const std::string& output) {
    std::wstring line;
    for (const std::string& word : words) {
        line += (line.empty() ? L"" : L" ") + quoted(pathOf(word).wstring());
    }
    STARTUPINFOW how{};
    how.cb = sizeof how;
    how.dwFlags = STARTF_USESTDHANDLES;
    how.hStdInput = opened(folder / kInput, GENERIC_READ, OPEN_EXISTING);
    how.hStdOutput = output == kFull ? opened(folder / kInput, GENERIC_READ, OPEN_EXISTING)
                                     : opened(folder / output, GENERIC_WRITE, CREATE_ALWAYS);
    how.hStdError = opened(folder / kErrors, GENERIC_WRITE, CREATE_ALWAYS);
    PROCESS_INFORMATION process{};
    const bool started = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, DETACHED_PROCESS, nullptr,
                                        folder.c_str(), &how, &process) != 0;
    for (const HANDLE stream : {how.hStdInput, how.hStdOutput, how.hStdError}) {
        CloseHandle(stream);
    }
    if (!started) {
        throw std::runtime_error("the command does not start");
    }
    DWORD status = 0;
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hProcess);
    CloseHandle(process.hThread);
    return static_cast<int>(status);
}

int thisProcess() {
    return static_cast<int>(GetCurrentProcessId());
}

#else

std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : text) {
        if (c == '\'') {
            result += "'\\'"; // closes, an escaped quote, opens again
        }
        result += c;
    }
    return result += "'";
}

int start(const fs::path& folder, const std::vector<std::string>& words, const std::string& output) {
    std::string line = "cd " + quoted(folder.string()) + " &&";
    for (const std::string& word : words) {
        line.append(" ").append(quoted(word));
    }
    for (const auto& [sign, name] : {std::pair("<", kInput), std::pair(">", output.c_str()), std::pair("2>", kErrors)}) {
        line.append(" ").append(sign).append(name);
    }
    const int status = std::system(line.c_str());
    return WEXITSTATUS(status);
}

int thisProcess() {
    return getpid();
}

#endif

} // namespace

std::string contentsOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void setVariable(const char* name, const fs::path& value) {
#if defined(_WIN32)
    SetEnvironmentVariableW(pathOf(name).c_str(), value.c_str());
#else
    setenv(name, value.c_str(), 1);
#endif
}

CommandTest::CommandTest()
    : folder_(fs::temp_directory_path() / ("murmelon-tool-" + std::to_string(thisProcess()) + "-" +
                                           testing::UnitTest::GetInstance()->current_test_info()->name())) {}

// The command itself keeps settings only where it is told to; a plug-in that it loads has its own.
void CommandTest::SetUp() {
    fs::remove_all(folder_); // of an earlier process with this number, which was killed
    fs::create_directories(folder_);
    setVariable("XDG_CONFIG_HOME", folder_);
    setVariable("XDG_DATA_HOME", folder_);
}

// Windows lets go of an ended program's files a moment later, or some seconds on a busy machine.
void CommandTest::TearDown() {
    constexpr std::chrono::seconds kPatience(30);
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    std::error_code error;
    while (fs::remove_all(folder_, error), error && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    EXPECT_FALSE(error) << error.message();
}

void CommandTest::write(const std::string& name, const std::string& contents) const {
    std::ofstream(folder_ / pathOf(name), std::ios::binary) << contents;
}

std::string CommandTest::read(const std::string& name) const {
    return contentsOf(folder_ / pathOf(name));
}

Result CommandTest::run(const std::vector<std::string>& arguments, const std::string& input,
                        const std::string& output) const {
    write(kInput, input);
    std::vector<std::string> words = {MURMELON_COMMAND};
    words.insert(words.end(), arguments.begin(), arguments.end());
    const int status = start(folder_, words, output);
    return {status, read(kOutput), read(kErrors)};
}

} // namespace CommandRun
