#include "quilt/Bounds.h"

#include "expression/Expression.h"
#include "notation/Compound.h"
#include "quilt/LayoutError.h"

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>

namespace Quilt {

namespace {

std::optional<std::int32_t> areaSymbol(const Rectangle& area, std::string_view name) {
    if (name.size() != 1) {
        return std::nullopt;
    }
    switch (name[0]) {
    case 'l':
        return area.left;
    case 't':
        return area.top;
    case 'w':
        return area.width;
    case 'h':
        return area.height;
    case 'r':
        return area.right();
    case 'b':
        return area.bottom();
    default:
        return std::nullopt;
    }
}

// Rectangles are added up where views nest; what no surface can show is cut off, so that no sum overflows.
constexpr std::int32_t kFarthest = 1 << 20;

std::int32_t inReach(std::int32_t value) {
    return std::clamp(value, -kFarthest, kFarthest);
}

} // namespace

Rectangle readBounds(const Stackbrace::Element& bounds, const Rectangle& enclosing) {
    std::array<std::int32_t, 4> sides = {0, 0, enclosing.width, enclosing.height};
    const auto list = bounds.list();
    if (list.size() > sides.size()) {
        throw LayoutError("Bounds have more than four components", list[sides.size()]);
    }
    for (std::size_t i = 0; i < list.size(); ++i) {
        const std::int32_t fallback = sides[i];
        const Symbols<std::int32_t> symbols = [&](std::string_view name) {
            return name == "$" ? std::optional(fallback) : areaSymbol(enclosing, name);
        };
        sides[i] =
            evaluateAll<std::int32_t>(list[i].empty() ? std::string() : list[i].string(), fallback, symbols);
    }
    if (sides[2] < 0 || sides[3] < 0) {
        throw std::runtime_error("View bounds has negative width and/or height");
    }
    return {inReach(sides[0]), inReach(sides[1]), inReach(sides[2]), inReach(sides[3])};
}

} // namespace Quilt
