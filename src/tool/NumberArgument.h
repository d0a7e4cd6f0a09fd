// Numbers on the command line.
#pragma once

#include <CLI/CLI.hpp>

#include <cmath>
#include <cstdlib>
#include <string>

namespace Tool {

// From the one to the other. A range alone takes what is not a number for one within it.
inline CLI::Validator numberWithin(double least, double most) {
    CLI::Validator range = CLI::Range(least, most);
    return {[range](std::string& text) {
                return std::isnan(std::strtod(text.c_str(), nullptr)) ? "Value " + text + " is not a number"
                                                                      : range(text);
            },
            range.get_description()};
}

} // namespace Tool
