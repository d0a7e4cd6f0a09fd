#include "quilt/ViewFactory.h"

#include "quilt/View.h"
#include "quilt/views/Views.h"

#include <algorithm>
#include <cmath>

namespace Quilt {

namespace {

using enum PropertyKind;

constexpr Property kCommon[] = {
    {"type", text, "", "The view type.", "", 0, 0, true},
    {"bounds", params, "{ 0, 0, $, $ }",
     "Left, top, width and height, in units: expressions over the enclosing area."},
    {"visible", condition, "true", "Whether the view, and all within it, is there."},
    {"hint", text, "", "What the variable `hint` says while the mouse is over the view."},
    {"cursor", choice, "", "The mouse's shape over the view, in place of its type's own.",
     "arrow hand text vertical horizontal move cross forbidden"},
};

void appendQuoted(std::string& text, std::string_view word) {
    text.append("`").append(word).append("`");
}

void appendRows(std::string& text, std::span<const Property> rows) {
    for (const Property& row : rows) {
        text += "| ";
        appendQuoted(text, row.name);
        text.append(" | ").append(kindText(row.kind)).append(" | ");
        if (row.required) {
            text += "required";
        } else if (!row.fallback.empty()) {
            appendQuoted(text, row.fallback);
        }
        text.append(" | ").append(row.about);
        if (!row.choices.empty()) {
            text += " One of";
            for (const auto word : words(row.choices)) {
                text += ' ';
                appendQuoted(text, word);
            }
            text += '.';
        }
        text += " |\n";
    }
}

constexpr const char* kTableHead = "| Property | Kind | Default | Meaning |\n|---|---|---|---|\n";

} // namespace

std::span<const Property> commonRows() {
    return kCommon;
}

void ViewFactory::add(ViewType type) {
    const auto place = std::ranges::lower_bound(types_, type.name, {}, &ViewType::name);
    if (place != types_.end() && place->name == type.name) {
        *place = std::move(type);
    } else {
        types_.insert(place, std::move(type));
    }
}

const ViewType* ViewFactory::find(std::string_view name) const {
    const auto place = std::ranges::lower_bound(types_, name, {}, &ViewType::name);
    return place != types_.end() && place->name == name ? &*place : nullptr;
}

ViewFactory standardViews() {
    ViewFactory views;
    for (const auto& type :
         {animationType, bubbleType, buttonType, captionType, clickType, clusterType, consoleType,
          dragAreaType, gradientType, groupType, knobType, markerType, pagedType, quiltType, rasterType,
          rectangleType, sliderType, transformedType, vectorType}) {
        views.add(type());
    }
    return views;
}

std::string viewReference(const ViewFactory& views) {
    std::string text =
        "# Views\n\nMade by `murmelon quilt types`; docs/quilt.md says what they have in common.\n\n"
        "## All views\n\n" +
        std::string(kTableHead);
    appendRows(text, kCommon);
    for (const ViewType& type : views.types()) {
        text += "\n## " + std::string(type.name) + "\n\n" + std::string(type.about) + "\n";
        if (!type.rows.empty()) {
            text += "\n" + std::string(kTableHead);
        }
        for (const auto& rows : type.rows) {
            appendRows(text, rows);
        }
    }
    return text;
}

} // namespace Quilt
