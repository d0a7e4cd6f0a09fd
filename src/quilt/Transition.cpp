#include "quilt/Transition.h"

#include "notation/Compound.h"
#include "quilt/Autoexec.h"
#include "quilt/LayoutError.h"
#include "quilt/Properties.h"

#include <algorithm>
#include <cmath>

namespace Quilt {

namespace {

double readNumber(std::string_view key, const Stackbrace::Element& value, double least, double most) {
    const auto number = wholeNumber(value.string());
    if (!number || *number < least || *number > most) {
        throw LayoutError("Invalid " + std::string(key) + " of transition: " + std::string(value.raw()),
                          value);
    }
    return *number;
}

Transition readTransition(const Stackbrace::Element& element, Transition::Direction direction) {
    Transition transition;
    transition.raw = element.raw();
    transition.direction = direction;
    constexpr double kLongestSeconds = 60;
    constexpr double kLargestPercent = 1000;
    const auto structure = element.structure();
    for (const auto& [key, value] : structure) {
        if (key == "restart") {
            transition.restart = value.boolean();
        } else if (key == "time") {
            transition.time = toMilliseconds(readNumber(key, value, 0, kLongestSeconds));
        } else if (key == "scale") {
            transition.scale = readNumber(key, value, 0, kLargestPercent) / 100;
        } else if (key == "scaleCurve") {
            transition.scaleCurve = readNumber(key, value, -1, 1);
        } else if (key == "opacity") {
            transition.opacity = readNumber(key, value, 0, 1);
        } else {
            throw LayoutError("Unknown property of transition: " + std::string(key), value);
        }
    }
    return transition;
}

} // namespace

Transition::Look Transition::look(std::chrono::milliseconds at) const {
    const double done =
        time.count() == 0
            ? 1
            : std::clamp(static_cast<double>(at.count()) / static_cast<double>(time.count()), 0.0, 1.0);
    const double away = direction == Direction::incoming ? 1 - done : done;
    // The curve bends the way of the scale only: an even fade reads best.
    const double bent = std::pow(away, std::exp2(2 * scaleCurve));
    return {1 + (scale - 1) * bent, 1 + (opacity - 1) * away};
}

Transitions readTransitions(const Stackbrace::Element& element) {
    using Direction = Transition::Direction;
    const auto structure = element.structure();
    for (const auto& [key, value] : structure) {
        constexpr std::string_view kKeys[] = {"default", "open", "close", "swapIn", "swapOut"};
        if (std::ranges::find(kKeys, key) == std::end(kKeys)) {
            throw LayoutError("Unknown transition: " + std::string(key), value);
        }
    }
    const auto read = [&structure](std::string_view key, std::string_view second, Direction direction) {
        for (const auto choice : {key, second, std::string_view("default")}) {
            if (const auto* const found = structure.find(choice)) {
                return readTransition(*found, direction);
            }
        }
        Transition none;
        none.direction = direction;
        return none;
    };
    Transitions transitions;
    transitions.open = read("open", "open", Direction::incoming);
    transitions.close = read("close", "close", Direction::outgoing);
    transitions.swapIn = read("swapIn", "open", Direction::incoming);
    transitions.swapOut = read("swapOut", "close", Direction::outgoing);
    transitions.defaultRaw = structure["default"].raw();
    return transitions;
}

} // namespace Quilt
