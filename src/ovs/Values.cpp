#include "ovs/Values.h"

#include "zekt/NumberText.h"

namespace OVS {

void fail(std::string message) {
    throw ZEKT::RunTimeException(std::move(message));
}

std::string shown(double value) {
    char buffer[ZEKT::kLongestNumberText];
    return std::string(ZEKT::numberText(value, buffer));
}

std::string shown(long long value) {
    return std::to_string(value);
}

double atLeast(double least, double value, std::string_view message) {
    if (!(value >= least)) {
        fail(std::string(message) + shown(value));
    }
    return value;
}

double above(double limit, double value, std::string_view message) {
    if (!(value > limit)) {
        fail(std::string(message) + shown(value));
    }
    return value;
}

double within(double least, double most, double value, std::string_view message) {
    if (!(value >= least && value <= most)) {
        fail(std::string(message) + shown(value));
    }
    return value;
}

Drawing::Colour colourOf(std::string_view text) {
    try {
        return Drawing::parseColour(text);
    } catch (const Drawing::ColourError& error) {
        fail(error.what());
    }
}

} // namespace OVS
