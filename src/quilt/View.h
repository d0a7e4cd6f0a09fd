// One rectangle of a layout's view tree: what is drawn there and how it answers to the mouse and the keys. Every
// view type of the framework derives from it, and so do those that others register (ViewFactory.h).
//
// A view belongs to one document and lives until that is loaded anew or closed. Its bounds are pixels, relative
// to its parent's top left. What it is made of it reads from its properties in its constructor; there it also
// says what it watches. Later it only reacts: drawing must not change anything.
#pragma once

#include "quilt/Geometry.h"
#include "quilt/Input.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace Drawing {
class Surface;
}

namespace Quilt {

class Document;

// Where a view stands while it is drawn.
struct DrawContext {
    Drawing::Surface& surface;
    Point origin;    // the view's top left, in pixels of `surface`
    Rectangle clip;  // what of the surface is to be drawn again; nothing outside may be touched
    double opacity;  // of all layers above, 0 to 1
};

class View {
public:
    View(Document& document, const Rectangle& bounds) : document_(&document), bounds_(bounds) {}
    View(const View&) = delete;
    View& operator=(const View&) = delete;
    virtual ~View() = default;

    const Rectangle& bounds() const { return bounds_; }
    View* parent() const { return parent_; }
    const std::vector<std::unique_ptr<View>>& children() const { return children_; }
    void add(std::unique_ptr<View> child);

    // Hidden views, and all within them, are neither drawn nor hit.
    bool visible() const { return visible_; }
    void setVisible(bool visible);

    // The view itself, below its children.
    virtual void draw(const DrawContext& context) const { static_cast<void>(context); }

    // The view and its children; overridden by views that draw their children in a way of their own.
    virtual void drawTree(const DrawContext& context) const;

    // Whether the view itself wants the mouse at `at`, relative to its own top left. Views that only show
    // something let it through to what lies below.
    virtual bool hit(Point at) const {
        static_cast<void>(at);
        return false;
    }

    // The topmost view at `at` that wants the mouse; nullptr if none does.
    virtual View* find(Point at);

    // Points are relative to the view. A view that was pressed gets all moves until the release, wherever they
    // are, and then `released`; when the gesture is taken from it (escape, a reload), `cancelled` instead.
    virtual void pressed(const MouseEvent& event) { static_cast<void>(event); }
    virtual void dragged(const MouseEvent& event) { static_cast<void>(event); }
    virtual void released(const MouseEvent& event) { static_cast<void>(event); }
    virtual void cancelled() {}
    virtual void hovered(bool inside) { static_cast<void>(inside); }
    virtual void moved(const MouseEvent& event) { static_cast<void>(event); } // with no button held

    // True: the event was for this view. Else its parents are asked, and at last the host.
    virtual bool wheel(const WheelEvent& event) {
        static_cast<void>(event);
        return false;
    }
    virtual bool key(const KeyEvent& event) {
        static_cast<void>(event);
        return false;
    }

    virtual bool focusable() const { return false; }
    virtual void focused(bool has) { static_cast<void>(has); }
    virtual Cursor cursor(Point at) const {
        static_cast<void>(at);
        return Cursor::arrow;
    }
    virtual std::string hint() const { return {}; }

    // Variables, or texts and actions that depend on some, may have changed. Views compare what they show.
    virtual void refresh() {}

    // Called about 30 times a second while ticking() holds, for what moves by itself.
    virtual bool ticking() const { return false; }
    virtual void tick(std::chrono::milliseconds now) { static_cast<void>(now); }

    // Says that the view, or `part` of it, looks different now.
    void invalidate() { invalidate({0, 0, bounds_.width, bounds_.height}); }
    virtual void invalidate(const Rectangle& part);

    Point originOnSurface() const;
    Document& document() const { return *document_; }

protected:
    void setBounds(const Rectangle& bounds);

private:
    Document* document_;
    Rectangle bounds_;
    View* parent_ = nullptr;
    std::vector<std::unique_ptr<View>> children_;
    bool visible_ = true;
};

} // namespace Quilt
