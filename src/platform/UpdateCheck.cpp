#include "platform/UpdateCheck.h"

#include <algorithm>
#include <charconv>
#include <utility>
#include <vector>

namespace Platform {

namespace {

constexpr std::size_t kMostBytes = 4096;

std::optional<std::vector<int>> readVersion(std::string_view text) {
    std::vector<int> numbers;
    while (true) {
        int number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc() || number < 0) {
            return std::nullopt;
        }
        numbers.push_back(number);
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
        if (text.empty()) {
            return numbers;
        }
        if (text.front() != '.') {
            return std::nullopt;
        }
        text.remove_prefix(1);
    }
}

std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(text.size(), end + 1));
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

} // namespace

std::optional<bool> isNewerVersion(std::string_view candidate, std::string_view current) {
    auto first = readVersion(candidate);
    auto second = readVersion(current);
    if (!first || !second) {
        return std::nullopt;
    }
    const std::size_t length = std::max(first->size(), second->size());
    first->resize(length); // 1.6 is 1.6.0
    second->resize(length);
    return *first > *second;
}

std::string UpdateCheck::builtInAddress() {
    return MURMELON_UPDATE_ADDRESS;
}

void UpdateCheck::start() {
    if (get_ || address_.empty()) {
        return;
    }
    HttpRequest request;
    request.address = address_;
    request.userAgent = "Murmelon/" + currentVersion_;
    request.mostBytes = kMostBytes;
    get_ = HttpGet::start(std::move(request));
}

std::optional<UpdateCheck::Update> UpdateCheck::poll() {
    const auto answer = get_ ? get_->answer() : std::nullopt;
    if (!answer) {
        return std::nullopt;
    }
    get_.reset();
    std::string_view text = answer->good() ? std::string_view(answer->body) : std::string_view();
    const std::string_view version = takeLine(text);
    const std::string_view page = takeLine(text);
    if (!isNewerVersion(version, currentVersion_).value_or(false)) {
        return std::nullopt;
    }
    return Update{std::string(version), page.starts_with("https://") ? std::string(page) : std::string()};
}

} // namespace Platform
