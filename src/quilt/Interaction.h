// Which view the mouse is over, which one it holds, which one has the keys, and what the variable `hint`
// says: what goes on between an editor's surface and the hand. The editor calls it with the window's events.
#pragma once

#include "quilt/Geometry.h"
#include "quilt/Input.h"

#include <chrono>
#include <optional>
#include <string>

namespace Quilt {

class Editor;
class View;

class Interaction {
public:
    explicit Interaction(Editor& editor) : editor_(editor) {}

    void mousePressed(const MouseEvent& event);
    void mouseReleased(const MouseEvent& event);
    void mouseMoved(const MouseEvent& event);
    void mouseLeft();
    bool wheel(const WheelEvent& event);
    bool key(const KeyEvent& event);

    // Takes the gesture that is on from its view, if that is `within` or in it; nullptr: from any.
    void cancel(const View* within = nullptr);

    // Views have come and gone or look different: looks again at what is under the mouse.
    void refresh();

    // A view is being destroyed.
    void forget(const View& view);

    // The view whose hint is shown; nullptr: none is.
    const View* hinted() const { return hinted_; }

    // Whether a click has had its say since the mouse came to that view: a menu or a field may stand there now,
    // and who clicks knows what at. Dragging and the wheel change what the hint says, and bring it back.
    bool hintMuted() const { return hintMuted_; }
    std::chrono::milliseconds restingSince() const { return restingSince_; }
    const std::optional<Point>& mouse() const { return mouse_; }
    const View* pressed() const { return pressed_; }

    // For views that show that they have the keys; only after the tab key, not after a click.
    const View* focusShown() const { return focusShown_ ? focused_ : nullptr; }

private:
    View* scope() const; // the modal view, else the root
    View* find(Point at) const;
    void setHovered(View* view);
    void setFocus(View* view, bool shown);
    bool moveFocus(bool backwards);
    void updateCursor(Point at);
    void updateHint();

    Editor& editor_;
    std::optional<Point> mouse_; // none: outside
    View* hovered_ = nullptr;
    View* pressed_ = nullptr;
    View* focused_ = nullptr;
    const View* hinted_ = nullptr;
    bool hintMuted_ = false;
    bool focusShown_ = false;
    Cursor cursor_ = Cursor::arrow;
    std::string hint_;
    std::chrono::milliseconds restingSince_{0};
};

} // namespace Quilt
