#include "tool/Progress.h"

#include "platform/ThisProgram.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace Tool {

namespace {

constexpr auto kPatience = std::chrono::seconds(1);
constexpr auto kInterval = std::chrono::milliseconds(100);
constexpr std::size_t kWidth = 40;

} // namespace

Progress::Progress(const char* what, std::size_t total)
    : what_(what), total_(std::max<std::size_t>(total, 1)), watched_(Platform::standardErrorIsTerminal()),
      next_(Clock::now() + kPatience) {}

Progress::~Progress() {
    if (drawn_) {
        fmt::print(stderr, "\r\x1B[K");
        std::fflush(stderr);
    }
}

void Progress::at(std::size_t done) {
    if (!watched_ || Clock::now() < next_) {
        return;
    }
    next_ = Clock::now() + kInterval;
    drawn_ = true;
    const std::size_t filled = std::min(done, total_) * kWidth / total_;
    fmt::print(stderr, "\r{} [{:-<{}}] {:3}%", what_, std::string(filled, '#'), kWidth,
               std::min(done, total_) * 100 / total_);
    std::fflush(stderr);
}

} // namespace Tool
