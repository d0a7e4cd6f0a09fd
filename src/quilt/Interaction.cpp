#include "quilt/Interaction.h"

#include "quilt/Editor.h"
#include "quilt/View.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace Quilt {

namespace {

Point relativeTo(const View& view, Point at) {
    const Point origin = view.origin();
    return {at.x - origin.x, at.y - origin.y};
}

MouseEvent relativeTo(const View& view, MouseEvent event) {
    event.at = relativeTo(view, event.at);
    return event;
}

bool isWithin(const View* view, const View* tree) {
    while (view != nullptr && view != tree) {
        view = view->parent();
    }
    return view == tree;
}

// The last one in the order of drawing.
View* topmostModal(View& view) {
    if (!view.visible()) {
        return nullptr;
    }
    View* found = view.modal() ? &view : nullptr;
    for (const auto& child : view.children()) {
        if (View* const within = topmostModal(*child)) {
            found = within;
        }
    }
    return found;
}

void collectFocusable(View& view, std::vector<View*>& found) {
    if (!view.visible()) {
        return;
    }
    if (view.focusable()) {
        found.push_back(&view);
    }
    for (const auto& child : view.children()) {
        collectFocusable(*child, found);
    }
}

} // namespace

View* Interaction::scope() const {
    View* const root = editor_.root();
    View* const modal = root == nullptr ? nullptr : topmostModal(*root);
    return modal != nullptr ? modal : root;
}

View* Interaction::find(Point at) const {
    View* const within = scope();
    return within == nullptr ? nullptr : within->find(relativeTo(*within, at));
}

void Interaction::mousePressed(const MouseEvent& event) {
    mouseMoved(event);
    if (pressed_ != nullptr) {
        return; // a second button during a gesture
    }
    View* const view = find(event.at);
    setFocus(view != nullptr && view->focusable() ? view : nullptr, false);
    if (view == nullptr) {
        return;
    }
    if (event.button == MouseButton::left) {
        pressed_ = view;
    }
    hintMuted_ = true;
    view->pressed(relativeTo(*view, event));
}

void Interaction::mouseReleased(const MouseEvent& event) {
    mouse_ = event.at;
    if (event.button == MouseButton::left && pressed_ != nullptr) {
        View* const view = std::exchange(pressed_, nullptr);
        hintMuted_ = true;
        view->released(relativeTo(*view, event));
    }
    refresh();
}

void Interaction::mouseMoved(const MouseEvent& event) {
    const bool moves = mouse_ != event.at;
    if (moves) {
        restingSince_ = editor_.services().clock.now();
    }
    mouse_ = event.at;
    if (pressed_ != nullptr) {
        hintMuted_ = hintMuted_ && !moves;
        pressed_->dragged(relativeTo(*pressed_, event));
        return;
    }
    refresh();
    if (hovered_ != nullptr) {
        hovered_->moved(relativeTo(*hovered_, event));
    }
}

void Interaction::mouseLeft() {
    mouse_.reset();
    refresh();
}

bool Interaction::wheel(const WheelEvent& event) {
    if (pressed_ != nullptr) {
        return true;
    }
    const View* const outermost = scope();
    for (View* view = find(event.at); view != nullptr; view = view->parent()) {
        WheelEvent local = event;
        local.at = relativeTo(*view, event.at);
        if (view->wheel(local)) {
            hintMuted_ = false;
            return true;
        }
        if (view == outermost) {
            break;
        }
    }
    return false;
}

bool Interaction::key(const KeyEvent& event) {
    if (event.key == Key::escape && pressed_ != nullptr) {
        cancel();
        return true;
    }
    View* const outermost = scope();
    if (outermost == nullptr) {
        return false;
    }
    if (focused_ != nullptr && !isWithin(focused_, outermost)) {
        setFocus(nullptr, false);
    }
    for (View* view = focused_ != nullptr ? focused_ : outermost; view != nullptr; view = view->parent()) {
        if (view->key(event)) {
            return true;
        }
        if (view == outermost) {
            break;
        }
    }
    return event.key == Key::tab && moveFocus(event.modifiers.shift);
}

bool Interaction::moveFocus(bool backwards) {
    std::vector<View*> all;
    collectFocusable(*scope(), all);
    if (all.empty()) {
        return false;
    }
    const auto count = static_cast<std::ptrdiff_t>(all.size());
    const auto at = std::ranges::find(all, focused_) - all.begin();
    const auto next = at == count ? (backwards ? count - 1 : 0) : (at + (backwards ? count - 1 : 1)) % count;
    setFocus(all[static_cast<std::size_t>(next)], true);
    return true;
}

void Interaction::cancel(const View* within) {
    if (pressed_ != nullptr && (within == nullptr || isWithin(pressed_, within))) {
        std::exchange(pressed_, nullptr)->cancelled();
        refresh();
    }
}

void Interaction::forget(const View& view) {
    for (View** const kept : {&hovered_, &pressed_, &focused_}) {
        if (*kept == &view) {
            *kept = nullptr;
        }
    }
    if (hinted_ == &view) {
        hinted_ = nullptr;
    }
}

void Interaction::refresh() {
    if (pressed_ == nullptr) {
        setHovered(mouse_ ? find(*mouse_) : nullptr);
        if (mouse_) {
            updateCursor(*mouse_);
        }
    }
    updateHint();
}

void Interaction::setHovered(View* view) {
    if (view == hovered_) {
        return;
    }
    if (hovered_ != nullptr) {
        hovered_->hovered(false);
    }
    hovered_ = view;
    if (view != nullptr) {
        view->hovered(true);
    }
}

void Interaction::setFocus(View* view, bool shown) {
    View* const before = std::exchange(focused_, view);
    const bool wasShown = std::exchange(focusShown_, shown);
    if (before != view || wasShown != shown) {
        if (before != nullptr) {
            before->focused(before == view);
        }
        if (view != nullptr && view != before) {
            view->focused(true);
        }
    }
}

void Interaction::updateCursor(Point at) {
    const Cursor wanted = hovered_ == nullptr ? Cursor::arrow : hovered_->cursor(relativeTo(*hovered_, at));
    if (std::exchange(cursor_, wanted) != wanted) {
        editor_.services().host.setCursor(wanted);
    }
}

// The hint of the view under the mouse or of what it is in; views that let the mouse through have theirs,
// too.
void Interaction::updateHint() {
    const View* view = pressed_;
    if (view == nullptr && mouse_ && scope() != nullptr) {
        view = scope()->findHint(relativeTo(*scope(), *mouse_));
    }
    while (view != nullptr && view->hint().empty()) {
        view = view->parent();
    }
    if (view != hinted_) {
        hintMuted_ = pressed_ != nullptr;
        hinted_ = view;
        restingSince_ = editor_.services().clock.now();
    }
    const std::string hint = view == nullptr ? std::string() : view->hint();
    if (std::exchange(hint_, hint) != hint) {
        editor_.variables().set("hint", hint);
    }
}

} // namespace Quilt
