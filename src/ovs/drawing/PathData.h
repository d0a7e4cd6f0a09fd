// Reads path data in the notation of SVG: M L H V C S Q T A Z in both cases, compact numbers, repeated
// commands left out, arc flags joined to what follows.
#pragma once

#include "drawing/Path.h"

#include <stdexcept>
#include <string_view>

namespace Drawing {

class PathDataError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Empty text is an empty path. Throws PathDataError: "Invalid L syntax in svg path data" with the command's upper-case
// letter, or "Invalid command in svg path data".
Path parsePathData(std::string_view text);

} // namespace Drawing
