#include "quilt/Autoexec.h"

#include "notation/Compound.h"
#include "quilt/LayoutError.h"
#include "quilt/Properties.h"

#include <algorithm>

namespace Quilt {

namespace {

std::chrono::milliseconds readTime(std::string_view key, const Stackbrace::Element& value) {
    const auto seconds = wholeNumber(value.string());
    if (!seconds || *seconds < 0) {
        throw LayoutError("Invalid " + std::string(key) + " of autoexec: " + std::string(value.raw()) +
                              " (expected seconds)",
                          value);
    }
    return toMilliseconds(*seconds);
}

} // namespace

std::chrono::milliseconds toMilliseconds(double seconds) {
    constexpr double kLongest = 1e9; // thirty years, far from the end of the clock
    return std::chrono::milliseconds(
        static_cast<std::int64_t>(std::clamp(seconds, 0.0, kLongest) * 1000.0 + 0.5));
}

Autoexec readAutoexec(const Stackbrace::Element& element) {
    Autoexec autoexec;
    const auto structure = element.structure();
    for (const auto& [key, value] : structure) {
        if (key == "action") {
            autoexec.action = value.string();
        } else if (key == "params") {
            autoexec.params = value.raw();
        } else if (key == "onChanged") {
            for (const auto& variable : value.list()) {
                autoexec.onChanged.push_back(variable.string());
            }
        } else if (key == "onReload") {
            autoexec.onReload = value.boolean();
        } else if (key == "onClose") {
            autoexec.onClose = value.boolean();
        } else if (key == "delay") {
            autoexec.delay = readTime(key, value);
        } else if (key == "repeat") {
            autoexec.repeat = readTime(key, value);
        } else {
            throw LayoutError("Unknown property of autoexec: " + std::string(key), value);
        }
    }
    if (autoexec.action.empty()) {
        throw LayoutError("Missing property of autoexec: action", element);
    }
    return autoexec;
}

} // namespace Quilt
