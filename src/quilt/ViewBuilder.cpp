#include "quilt/ViewBuilder.h"

#include "notation/Compound.h"
#include "quilt/Bounds.h"
#include "quilt/Document.h"
#include "quilt/LayoutError.h"
#include "quilt/View.h"
#include "quilt/ViewFactory.h"

#include <stdexcept>

namespace Quilt {

void ViewBuilder::addViews(View& parent, const Stackbrace::Element& list, const Rectangle& area) {
    for (const auto& element : list.list()) {
        if (auto view = build(element, {0, 0, area.width, area.height})) {
            parent.add(std::move(view));
        }
    }
}

std::unique_ptr<View> ViewBuilder::build(const Stackbrace::Element& view, const Rectangle& area) {
    struct Deeper {
        int& depth;
        ~Deeper() { --depth; }
    };
    const Deeper deeper{++depth_};
    try {
        return make(view, area);
    } catch (const std::exception& error) {
        document_.reportError(kLoadErrorTitle, error.what(), "View " + placeText(view.position()));
        return nullptr;
    }
}

std::unique_ptr<View> ViewBuilder::make(const Stackbrace::Element& view, const Rectangle& area) {
    if (depth_ > kDeepestView) {
        throw LayoutError("View nesting limit exceeded", view);
    }
    const auto structure = view.structure();
    const std::string name = structure["type"].empty() ? std::string() : structure["type"].string();
    if (name.empty()) {
        throw LayoutError("Missing view type", view);
    }
    const ViewType* const type = document_.viewFactory().find(name);
    if (type == nullptr) {
        throw LayoutError("Unknown view type: " + name, structure["type"]);
    }
    auto rows = type->rows;
    rows.insert(rows.begin(), commonRows());
    const Properties properties(type->name, rows, view);
    const Rectangle units = readBounds(properties.element("bounds"), area);
    return type->make({document_, properties, units, document_.scale().toPixels(units), *this});
}

} // namespace Quilt
