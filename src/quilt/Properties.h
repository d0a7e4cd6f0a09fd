// The properties of one view as its layout has them, checked against the rows of its type. Everything that
// can be said about a value without drawing it is said here, when the view is built: an unknown property, a
// word that is no number, a number out of range, each as a LayoutError with its place.
//
// The elements point into the layout's text; views copy what they keep.
#pragma once

#include "notation/Compound.h"
#include "quilt/Geometry.h"
#include "quilt/Property.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Quilt {

struct Align {
    double x = 0; // 0: left, 1: right
    double y = 0; // 0: top, 1: bottom
};

struct Range {
    double from = 0;
    double to = 1;

    // Where `value` lies between the ends, 0 to 1, and back.
    double position(double value) const;
    double value(double position) const { return from + (to - from) * position; }
};

using PropertyRows = std::vector<std::span<const Property>>;

class Properties {
public:
    // `view` is the structure that stands in the layout. Throws LayoutError, or what Stackbrace throws.
    Properties(std::string_view type, const PropertyRows& rows, const Stackbrace::Element& view);

    std::string_view type() const { return type_; }
    Stackbrace::Position position() const { return view_.position(); }

    // Whether the type has such a row.
    bool knows(std::string_view name) const { return findRow(name) != nullptr; }
    bool has(std::string_view name) const { return structure_.find(name) != nullptr; }
    Stackbrace::Element element(std::string_view name) const { return structure_[name]; }

    // Every name has to be in the rows, with a fitting kind. What the layout leaves out reads as the
    // fallback, or as 0, "" and the like where there is none.
    bool boolean(std::string_view name) const;
    std::int32_t integer(std::string_view name) const;
    double number(std::string_view name) const;
    std::string string(std::string_view name) const; // of text, variable, condition, choice, color, action...
    std::string raw(std::string_view name) const;    // as it stands in the layout
    Range range(std::string_view name) const;
    Point offset(std::string_view name) const; // in units
    Align align(std::string_view name) const;
    std::vector<double> numbers(std::string_view name) const;
    std::vector<std::string> strings(std::string_view name) const; // of a list

    [[noreturn]] void fail(std::string_view name, const std::string& reason) const;

private:
    const Property& row(std::string_view name) const;
    const Property* findRow(std::string_view name) const;
    void check(const Property& row, const Stackbrace::Element& value) const;

    std::string_view type_;
    PropertyRows rows_;
    Stackbrace::Element view_;
    Stackbrace::Structure structure_;
};

// Finite, and nothing behind it. nullopt otherwise.
std::optional<double> wholeNumber(std::string_view text);
std::optional<std::int32_t> wholeInteger(std::string_view text);
std::optional<bool> wholeBoolean(std::string_view text);
std::vector<std::string_view> words(std::string_view text);

} // namespace Quilt
