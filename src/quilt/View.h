// One rectangle of a layout's view tree: what is drawn there and how it answers to the mouse and the keys.
// Every view type of the framework derives from it, and so do those that others register (ViewFactory.h).
//
// A view belongs to one document and lives until that is loaded anew or closed. Its bounds are pixels,
// relative to its parent's top left. What it is made of it reads from its properties in its constructor; what
// it shows of variables it reads in refresh(). Drawing changes nothing that anybody could see.
#pragma once

#include "quilt/Geometry.h"
#include "quilt/Input.h"
#include "quilt/LiveText.h"
#include "quilt/ViewFactory.h"

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Drawing {
class Canvas;
}

namespace Quilt {

class Document;

// Where a view stands while it is drawn. The canvas's target may be a part of the surface, the part that is
// out of date, or a layer: `origin` is the view's top left on it, and may lie outside.
struct DrawContext {
    Drawing::Canvas& canvas;
    Point origin;
};

class View {
public:
    explicit View(const ViewSetup& setup);
    View(Document& document, std::string_view type, const Rectangle& pixels); // with no properties
    View(const View&) = delete;
    View& operator=(const View&) = delete;
    virtual ~View();

    std::string_view type() const { return type_; }
    Document& document() const { return *document_; }
    const Rectangle& bounds() const { return bounds_; }
    Rectangle area() const { return {0, 0, bounds_.width, bounds_.height}; }
    View* parent() const { return parent_; }
    const std::vector<std::unique_ptr<View>>& children() const { return children_; }
    void add(std::unique_ptr<View> child);

    // Hidden views, and all within them, are neither drawn nor hit.
    bool visible() const { return visible_; }
    void show(bool visible); // for views with no property of that name

    // Called once, before the view is drawn for the first time: images and fonts are had then.
    virtual void prepare() {}
    void prepareTree();

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

    // The topmost view at `at` that wants the mouse or has a hint.
    const View* findHint(Point at) const;

    // Whether the mouse and the keys are for this view, and what is in it, alone.
    virtual bool modal() const { return false; }

    // Points are relative to the view. A view that was pressed gets all moves until the release, wherever
    // they are, and then `released`; when the gesture is taken from it (escape, a reload), `cancelled`
    // instead.
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
    Cursor cursor(Point at) const; // the layout's, else the view's own
    virtual Cursor ownCursor(Point at) const {
        static_cast<void>(at);
        return Cursor::arrow;
    }
    virtual std::string hint() const { return hint_.value(); }

    // Variables, or texts and actions that depend on some, may have changed: the view compares what it shows
    // and invalidates itself. Overriders call their base's. Must not write variables.
    virtual void refresh();

    // Called after each update, when variables can be written again.
    virtual void settled() {}

    // Called about 30 times a second while ticking() holds, for what moves by itself.
    virtual bool ticking() const { return false; }
    virtual void tick(std::chrono::milliseconds now) { static_cast<void>(now); }

    // Says that the view, or `part` of it, looks different now.
    void invalidate() { invalidate(area()); }
    void invalidate(const Rectangle& part) const;

    // The view's top left on the editor's surface.
    Point origin() const;

protected:
    void setBounds(const Rectangle& bounds);
    void clearChildren() { children_.clear(); }

    // What of the parents' surface a change of `part` of this view concerns; wider for views that move what
    // they hold.
    virtual Rectangle affected(const Rectangle& part) const { return part; }

private:
    friend class Editor; // sets its root to 0, 0

    Document* document_;
    std::string_view type_;
    Rectangle bounds_;
    View* parent_ = nullptr;
    std::vector<std::unique_ptr<View>> children_;
    LiveText visibility_;
    LiveText hint_;
    std::string cursor_;
    bool visible_ = true;
    bool prepared_ = false;
};

} // namespace Quilt
