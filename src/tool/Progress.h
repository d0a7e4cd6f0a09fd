// A progress bar on standard error for work that takes long, when a person is watching it there.
#pragma once

#include <chrono>
#include <cstddef>

namespace Tool {

class Progress {
public:
    Progress(const char* what, std::size_t total);
    ~Progress(); // takes the bar off the screen
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Draws now and then, and nothing during the first second.
    void at(std::size_t done);

private:
    using Clock = std::chrono::steady_clock;

    const char* what_;
    std::size_t total_;
    bool watched_;
    bool drawn_ = false;
    Clock::time_point next_;
};

} // namespace Tool
