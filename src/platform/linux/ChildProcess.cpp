#include "platform/linux/ChildProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <thread>

extern char** environ;

namespace Platform {

namespace {

// What a program inherits: no input, and nothing of the host's signal masks and handlers, which hosts like to
// set.
class SpawnSettings {
public:
    explicit SpawnSettings(int output) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawnattr_init(&attributes_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        if (output >= 0) {
            posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
        } else {
            posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        }
        posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        sigset_t none;
        sigset_t defaults;
        sigemptyset(&none);
        sigemptyset(&defaults);
        for (const int signal : {SIGPIPE, SIGCHLD, SIGTERM, SIGINT}) {
            sigaddset(&defaults, signal);
        }
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setsigdefault(&attributes_, &defaults);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    pid_t spawn(const std::vector<std::string>& words) const {
        std::vector<char*> arguments;
        for (const std::string& word : words) {
            arguments.push_back(const_cast<char*>(word.c_str()));
        }
        arguments.push_back(nullptr);
        pid_t process = 0;
        const int error =
            posix_spawnp(&process, arguments[0], &actions_, &attributes_, arguments.data(), environ);
        if (error != 0) {
            throw std::runtime_error("Could not start " + words[0] + ": " +
                                     std::error_code(error, std::generic_category()).message());
        }
        return process;
    }

private:
    posix_spawn_file_actions_t actions_;
    posix_spawnattr_t attributes_;
};

// Another thread of the host's may reap our children; that counts as ended.
bool ended(pid_t process, int& status) {
    const pid_t result = waitpid(process, &status, WNOHANG);
    return result == process || (result < 0 && errno == ECHILD);
}

} // namespace

bool programExists(const std::string& name) {
    const char* const path = std::getenv("PATH");
    std::string_view rest = path ? path : "/usr/bin:/bin";
    while (!rest.empty()) {
        const std::string_view folder = rest.substr(0, rest.find(':'));
        rest.remove_prefix(std::min(rest.size(), folder.size() + 1));
        if (!folder.empty() && access((std::filesystem::path(folder) / name).c_str(), X_OK) == 0) {
            return true;
        }
    }
    return false;
}

ChildProcess::ChildProcess(const std::vector<std::string>& words) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("Could not start " + words[0]);
    }
    output_ = ends[0];
    fcntl(output_, F_SETFL, O_NONBLOCK);
    try {
        process_ = SpawnSettings(ends[1]).spawn(words);
    } catch (...) {
        close(ends[0]);
        close(ends[1]);
        throw;
    }
    close(ends[1]);
}

ChildProcess::~ChildProcess() {
    close(output_);
    int status = 0;
    if (process_ == 0 || ended(process_, status)) {
        return;
    }
    kill(process_, SIGTERM);
    constexpr int kTries = 20;
    for (int tried = 0; tried < kTries; ++tried) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (ended(process_, status)) {
            return;
        }
    }
    kill(process_, SIGKILL);
    waitpid(process_, &status, 0);
}

std::optional<ChildProcess::Result> ChildProcess::poll() {
    readOutput();
    int status = 0;
    if (process_ == 0 || !ended(process_, status)) {
        return std::nullopt;
    }
    process_ = 0;
    readOutput(); // what it has written between the two
    return Result{WIFEXITED(status) ? WEXITSTATUS(status) : -1, text_};
}

void ChildProcess::readOutput() {
    constexpr std::size_t kMost = 65536;
    std::array<char, 4096> buffer;
    ssize_t count = 0;
    while (text_.size() < kMost && (count = read(output_, buffer.data(), buffer.size())) > 0) {
        text_.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

// Somebody has to wait for a child's end, and a plug-in may be gone by then. So a middleman starts the
// program, ends at once and leaves it to the system.
void startDetached(const std::vector<std::string>& words) {
    std::vector<std::string> all{"setsid", "--fork"};
    all.insert(all.end(), words.begin(), words.end());
    if (!programExists(words[0]) || !programExists(all[0])) {
        throw std::runtime_error("There is no program " + words[0]);
    }
    const pid_t process = SpawnSettings(-1).spawn(all);
    int status = 0;
    waitpid(process, &status, 0);
}

} // namespace Platform
