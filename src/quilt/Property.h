// What a view type can be told in a layout: one row a property. The rows check what a layout says, supply
// what it leaves out, and are printed as the reference of docs/quilt-views.md (`murmelon quilt types`).
#pragma once

#include <limits>
#include <string_view>

namespace Quilt {

enum class PropertyKind {
    boolean,   // true or false
    condition, // meta-text that reads true or false once expanded
    integer,
    number,
    level,  // meta-text that reads as a number once expanded
    range,  // { FROM, TO }: two different numbers
    offset, // { X, Y } in units, down and to the right
    align,  // left, center or right, top, middle or bottom: one word or one of each
    choice, // one of the words of `choices`
    text,   // meta-text
    variable,
    color,
    colors,      // a list of colors
    numbers,     // a list of numbers
    stateColors, // { STATE: color }, the states as in `choices`
    image,
    stateImages, // { STATE: image }
    film,
    font,
    action,
    params, // of an action: any value, read when the action is
    views,  // a list of views
    pages,  // { NAME: list of views }
};

std::string_view kindText(PropertyKind kind); // as the reference calls it

struct Property {
    std::string_view name;
    PropertyKind kind;
    std::string_view fallback; // as a layout would write it; empty: nothing
    std::string_view about;
    std::string_view choices = {}; // words with a space between
    double least = -std::numeric_limits<double>::infinity();
    double most = std::numeric_limits<double>::infinity();
    bool required = false;
};

} // namespace Quilt
