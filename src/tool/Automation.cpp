#include "tool/Automation.h"

#include "tool/ParameterAssignment.h"

#include <fmt/core.h>

#include <algorithm>
#include <stdexcept>

namespace Tool {

Automation::Automation(std::string_view text) {
    const auto equals = text.find('=');
    if (equals == std::string_view::npos) {
        throw std::runtime_error(fmt::format("Invalid automation (NAME=TIME:VALUE,...): {}", text));
    }
    parameter_ = parameterNamed(text.substr(0, equals));
    for (std::size_t begin = equals + 1; begin <= text.size();) {
        const auto end = std::min(text.find(',', begin), text.size());
        const auto point = text.substr(begin, end - begin);
        const auto colon = std::min(point.find(':'), point.size());
        const auto seconds = numberOf(point.substr(0, colon));
        const auto value = colon < point.size() ? numberOf(point.substr(colon + 1)) : std::nullopt;
        if (!seconds || !value || *seconds < 0 || *value < 0 || *value > 1 ||
            (!points_.empty() && *seconds < points_.back().seconds)) {
            throw std::runtime_error(fmt::format("Invalid break point (SECONDS:0..1, rising): {}", point));
        }
        points_.push_back({*seconds, *value});
        begin = end + 1;
    }
}

float Automation::valueAt(double seconds) const {
    // The first point that lies later; of points at one time the last counts.
    const auto next = std::ranges::upper_bound(points_, seconds, {}, &Point::seconds);
    if (next == points_.begin()) {
        return static_cast<float>(next->value);
    }
    const Point& before = *(next - 1);
    if (next == points_.end()) {
        return static_cast<float>(before.value);
    }
    const double part = (seconds - before.seconds) / (next->seconds - before.seconds);
    return static_cast<float>(before.value + part * (next->value - before.value));
}

} // namespace Tool
