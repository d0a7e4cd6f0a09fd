#include "quilt/View.h"

#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/drawing/Painting.h"

#include <utility>

namespace Quilt {

namespace {

// In the order of the enumeration.
constexpr std::string_view kCursors[] = {"arrow",      "hand", "text",  "vertical",
                                         "horizontal", "move", "cross", "forbidden"};

} // namespace

View::View(const ViewSetup& setup)
    : document_(&setup.document), type_(setup.properties.type()), bounds_(setup.pixels),
      visibility_(setup.properties.string("visible")), hint_(setup.properties.string("hint")),
      cursor_(setup.properties.string("cursor")) {}

View::View(Document& document, std::string_view type, const Rectangle& pixels)
    : document_(&document), type_(type), bounds_(pixels) {}

View::~View() {
    document_->editor().interaction().forget(*this);
}

void View::add(std::unique_ptr<View> child) {
    child->parent_ = this;
    children_.push_back(std::move(child));
}

void View::prepareTree() {
    if (!visible_) {
        return;
    }
    if (!std::exchange(prepared_, true)) {
        prepare();
    }
    for (const auto& child : children_) {
        child->prepareTree();
    }
}

void View::drawTree(const DrawContext& context) const {
    if (!clipOf(context, area()).isEmpty()) {
        draw(context);
    }
    for (const auto& child : children_) {
        if (child->visible()) {
            const Point at = child->bounds().origin();
            child->drawTree({context.canvas, {context.origin.x + at.x, context.origin.y + at.y}});
        }
    }
}

View* View::find(Point at) {
    if (!visible_) {
        return nullptr;
    }
    for (auto child = children_.rbegin(); child != children_.rend(); ++child) {
        const Point origin = (*child)->bounds().origin();
        if (View* const found = (*child)->find({at.x - origin.x, at.y - origin.y})) {
            return found;
        }
    }
    return area().contains(at) && hit(at) ? this : nullptr;
}

const View* View::findHint(Point at) const {
    if (!visible_) {
        return nullptr;
    }
    for (auto child = children_.rbegin(); child != children_.rend(); ++child) {
        const Point origin = (*child)->bounds().origin();
        if (const View* const found = (*child)->findHint({at.x - origin.x, at.y - origin.y})) {
            return found;
        }
    }
    return area().contains(at) && (hit(at) || !hint().empty()) ? this : nullptr;
}

Cursor View::cursor(Point at) const {
    for (std::size_t i = 0; i < std::size(kCursors); ++i) {
        if (kCursors[i] == cursor_) {
            return static_cast<Cursor>(i);
        }
    }
    return ownCursor(at);
}

void View::refresh() {
    hint_.refresh(*document_);
    visibility_.refresh(*document_);
    // Views with no properties are shown and hidden by whoever made them.
    if (const auto visible = visibility_.boolean()) {
        show(*visible);
    } else if (!visibility_.source().empty()) {
        show(false);
    }
}

void View::show(bool visible) {
    if (visible != visible_) {
        visible_ = true; // what is hidden invalidates nothing
        invalidate();
        visible_ = visible;
    }
}

void View::invalidate(const Rectangle& part) const {
    Rectangle dirty = part;
    for (const View* view = this; view != nullptr; view = view->parent_) {
        if (!view->visible_) {
            return;
        }
        dirty = view->affected(dirty).movedBy(view->bounds_.origin());
    }
    document_->editor().invalidate(dirty);
}

Point View::origin() const {
    Point origin;
    for (const View* view = this; view != nullptr; view = view->parent_) {
        origin = {origin.x + view->bounds_.left, origin.y + view->bounds_.top};
    }
    return origin;
}

void View::setBounds(const Rectangle& bounds) {
    if (bounds != bounds_) {
        invalidate();
        bounds_ = bounds;
        invalidate();
    }
}

} // namespace Quilt
