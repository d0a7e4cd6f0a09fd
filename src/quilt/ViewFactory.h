// The view types that layouts can name. The framework has its own (standardViews); whoever runs an editor
// adds what belongs to the program:
//
//   ViewFactory views = standardViews();
//   views.add({"midiAssign", "Shows and edits ...", {kMidiAssignRows}, make<MidiAssign>});
#pragma once

#include "quilt/Geometry.h"
#include "quilt/Properties.h"
#include "quilt/Property.h"

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Quilt {

class Document;
class View;
class ViewBuilder;

// What a view is made from. The properties are gone once it is made.
struct ViewSetup {
    Document& document;
    const Properties& properties;
    Rectangle units;  // relative to the parent
    Rectangle pixels; // the same, scaled
    ViewBuilder& builder;
};

struct ViewType {
    std::string_view name;
    std::string_view about;
    PropertyRows rows; // beside those that all views have
    std::function<std::unique_ptr<View>(const ViewSetup&)> make;
};

template <typename T>
std::unique_ptr<View> make(const ViewSetup& setup) {
    return std::make_unique<T>(setup);
}

// type, bounds, visible, hint, cursor.
std::span<const Property> commonRows();

class ViewFactory {
public:
    void add(ViewType type); // in place of one of the same name

    const ViewType* find(std::string_view name) const; // nullptr when there is none
    const std::vector<ViewType>& types() const { return types_; }

private:
    std::vector<ViewType> types_; // by name
};

ViewFactory standardViews();

// The reference of all types and their properties, in Markdown.
std::string viewReference(const ViewFactory& views);

} // namespace Quilt
