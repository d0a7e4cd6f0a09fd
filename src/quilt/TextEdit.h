// A line of text that the user is asked to type, in a field over the surface.
#pragma once

#include "quilt/Geometry.h"

#include <functional>
#include <optional>
#include <string>

namespace Quilt {

struct TextEdit {
    std::string text;                       // what stands there at first
    std::optional<Rectangle> at;            // the control that asks, in pixels of the surface
    std::function<void(std::string)> typed; // called at most once: not when the user gives up
};

} // namespace Quilt
