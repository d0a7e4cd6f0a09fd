// A program of the user's that runs beside the host: started without a shell, read without waiting, and never
// left behind as a zombie.
#pragma once

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace Platform {

// Whether there is an executable of this name in PATH.
bool programExists(const std::string& name);

class ChildProcess {
public:
    // Throws std::runtime_error when the program cannot be started. Its standard input is empty.
    explicit ChildProcess(const std::vector<std::string>& words);
    // Ends the program if it still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    struct Result {
        int status = 0; // its exit status; -1 when a signal ended it
        std::string output;
    };

    // Returns at once; nothing as long as the program runs.
    std::optional<Result> poll();

private:
    void readOutput();

    pid_t process_ = 0;
    int output_ = -1;
    std::string text_;
};

// Starts a program that nobody waits for. Throws std::runtime_error when it cannot be started.
void startDetached(const std::vector<std::string>& words);

} // namespace Platform
