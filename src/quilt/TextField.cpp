#include "quilt/TextField.h"

#include "quilt/Desktop.h"
#include "quilt/Unicode.h"
#include "quilt/drawing/Painting.h"

#include <algorithm>
#include <cmath>

namespace Quilt {

namespace {

constexpr Colour kPaper = 0xFFF4F1EA;
constexpr Colour kEdge = 0xFF5B5E68;
constexpr Colour kSelection = 0xFFFFC4B3;
constexpr Colour kCaret = 0xFF1A1B1F;

constexpr double kPadding = 5;
constexpr double kLeastWidth = 56;
constexpr double kLeastHeight = 20;
constexpr double kFreeWidth = 220; // of a field that belongs to no control

bool isBlank(char16_t c) {
    return c == u' ';
}

} // namespace

Rectangle TextField::place(const std::optional<Rectangle>& at, const Rectangle& surface, double scale) {
    const auto pixels = [scale](double units) {
        return static_cast<std::int32_t>(std::lround(units * scale));
    };
    const Rectangle control = at.value_or(
        Rectangle{surface.width / 2 - pixels(kFreeWidth) / 2, surface.height / 2, pixels(kFreeWidth), 0});
    const std::int32_t width = std::min(std::max(control.width, pixels(kLeastWidth)), surface.width);
    // A field over a tall control, a knob, stands in its middle and does not hide all of it.
    const std::int32_t height = std::min(pixels(kLeastHeight), surface.height);
    const std::int32_t left = control.left + (control.width - width) / 2;
    const std::int32_t top = control.top + (control.height - height) / 2;
    return {std::clamp(left, 0, surface.width - width), std::clamp(top, 0, surface.height - height), width,
            height};
}

TextField::TextField(std::string_view text, const Rectangle& bounds, std::shared_ptr<Images::TextFont> font,
                     double scale)
    : text_(toUtf16(text)), first_(text_), caret_(text_.size()), bounds_(bounds), font_(std::move(font)),
      scale_(scale) {
    scrollToCaret();
}

std::string TextField::text() const {
    return toUtf8(text_);
}

double TextField::widthTo(std::size_t place) const {
    return font_ == nullptr ? 0 : font_->width(std::u16string_view(text_).substr(0, place));
}

std::size_t TextField::placeAt(double x) const {
    std::size_t place = 0;
    while (place < text_.size() && (widthTo(place) + widthTo(place + 1)) / 2 < x) {
        ++place;
    }
    return place;
}

std::size_t TextField::wordFrom(std::size_t place, bool backwards) const {
    if (backwards) {
        while (place > 0 && isBlank(text_[place - 1])) {
            --place;
        }
        while (place > 0 && !isBlank(text_[place - 1])) {
            --place;
        }
    } else {
        while (place < text_.size() && !isBlank(text_[place])) {
            ++place;
        }
        while (place < text_.size() && isBlank(text_[place])) {
            ++place;
        }
    }
    return place;
}

void TextField::moveTo(std::size_t place, bool extend) {
    caret_ = std::min(place, text_.size());
    if (!extend) {
        anchor_ = caret_;
    }
    scrollToCaret();
}

void TextField::erase(std::size_t from, std::size_t to) {
    text_.erase(from, to - from);
    moveTo(from, false);
}

void TextField::insert(std::u16string_view text) {
    erase(selectionStart(), selectionEnd());
    std::u16string line(text.substr(0, kLongest - std::min(kLongest, text_.size())));
    // One line it is, whatever is pasted.
    std::ranges::replace_if(
        line, [](char16_t c) { return c < u' '; }, u' ');
    text_.insert(caret_, line);
    moveTo(caret_ + line.size(), false);
}

bool TextField::clipboardKey(char32_t letter, Desktop& desktop) {
    switch (letter) {
    case U'a':
        anchor_ = 0;
        caret_ = text_.size();
        return true;
    case U'c':
    case U'x':
        if (caret_ != anchor_) {
            desktop.setClipboardText(toUtf8(selected()));
            if (letter == U'x') {
                insert({});
            }
        }
        return true;
    case U'v':
        insert(toUtf16(desktop.clipboardText().value_or("")));
        return true;
    default:
        return false;
    }
}

bool TextField::key(const KeyEvent& event, Desktop& desktop) {
    const auto [shift, control, alt] = event.modifiers;
    switch (event.key) {
    case Key::character:
        if (control && !alt) {
            return clipboardKey(event.character | 0x20, desktop);
        }
        if (event.character < U' ' || event.character > 0xFFFF || event.character == 0x7F) {
            return false;
        }
        insert(std::u16string(1, static_cast<char16_t>(event.character)));
        return true;
    case Key::backspace:
    case Key::del:
        if (caret_ != anchor_) {
            insert({});
        } else if (event.key == Key::backspace && caret_ > 0) {
            erase(control ? wordFrom(caret_, true) : caret_ - 1, caret_);
        } else if (event.key == Key::del && caret_ < text_.size()) {
            erase(caret_, control ? wordFrom(caret_, false) : caret_ + 1);
        }
        return true;
    case Key::left:
        moveTo(!shift && caret_ != anchor_ ? selectionStart()
               : control                   ? wordFrom(caret_, true)
                                           : caret_ - std::min<std::size_t>(caret_, 1),
               shift);
        return true;
    case Key::right:
        moveTo(!shift && caret_ != anchor_ ? selectionEnd()
               : control                   ? wordFrom(caret_, false)
                                           : caret_ + 1,
               shift);
        return true;
    case Key::home:
    case Key::up:
        moveTo(0, shift);
        return true;
    case Key::end:
    case Key::down:
        moveTo(text_.size(), shift);
        return true;
    default:
        return false;
    }
}

void TextField::pressed(std::int32_t x, bool extend) {
    moveTo(placeAt(x - bounds_.left - kPadding * scale_ + scroll_), extend);
}

void TextField::selectWord() {
    anchor_ = caret_;
    while (anchor_ > 0 && !isBlank(text_[anchor_ - 1])) {
        --anchor_;
    }
    while (caret_ < text_.size() && !isBlank(text_[caret_])) {
        ++caret_;
    }
    scrollToCaret();
}

void TextField::scrollToCaret() {
    const double room = bounds_.width - 2 * kPadding * scale_;
    const double at = widthTo(caret_);
    scroll_ = std::clamp(scroll_, at - room, at);
    scroll_ = std::clamp(scroll_, 0.0, std::max(0.0, widthTo(text_.size()) - room));
}

void TextField::draw(const DrawContext& context) const {
    const double radius = 3 * scale_;
    fillBox(context, bounds_, kPaper, radius);
    frameBox(context, bounds_, kEdge, std::max(1.0, scale_), radius);
    const auto padding = static_cast<std::int32_t>(std::lround(kPadding * scale_));
    const Rectangle inside{bounds_.left + padding, bounds_.top + 1, std::max(0, bounds_.width - 2 * padding),
                           std::max(0, bounds_.height - 2)};
    if (font_ == nullptr || inside.empty()) {
        return;
    }
    const double height = font_->ascent() + font_->descent();
    const double top = inside.top + (inside.height - height) / 2;
    const auto column = [&](std::size_t place, std::int32_t width) {
        const auto left = static_cast<std::int32_t>(std::lround(inside.left + widthTo(place) - scroll_));
        return Rectangle{left, static_cast<std::int32_t>(std::lround(top)), width,
                         static_cast<std::int32_t>(std::lround(height))};
    };
    if (caret_ != anchor_) {
        Rectangle selection = column(selectionStart(), 0);
        selection.width = column(selectionEnd(), 0).left - selection.left;
        fillBox(context, intersection(selection, inside), kSelection);
    }
    font_->draw(context.canvas.target(), clipOf(context, inside), context.origin.x + inside.left - scroll_,
                std::round(context.origin.y + top + font_->ascent()), text_);
    fillBox(context, column(caret_, std::max(1, static_cast<std::int32_t>(std::lround(scale_)))), kCaret);
}

} // namespace Quilt
