// Makes views from their structures in a layout. A view that cannot be made is left out with all within it:
// the document reports why, and the rest of the surface works.
#pragma once

#include "notation/Document.h"
#include "quilt/Geometry.h"

#include <memory>

namespace Quilt {

class Document;
class View;

class ViewBuilder {
public:
    // A layout is written by people, but its text is not trusted: each level of views costs stack.
    static constexpr int kDeepestView = 100;

    explicit ViewBuilder(Document& document) : document_(document) {}

    // The views of a list, added to `parent`; `area` is what encloses them, in units.
    void addViews(View& parent, const Stackbrace::Element& list, const Rectangle& area);

    // One view; nullptr when it could not be made.
    std::unique_ptr<View> build(const Stackbrace::Element& view, const Rectangle& area);

private:
    std::unique_ptr<View> make(const Stackbrace::Element& view, const Rectangle& area);

    Document& document_;
    int depth_ = 0;
};

} // namespace Quilt
