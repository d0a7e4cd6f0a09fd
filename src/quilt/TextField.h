// A line of text in the making, in a frame over the surface: the caret, what is selected, what the keys do.
#pragma once

#include "images/TextFont.h"
#include "quilt/Geometry.h"
#include "quilt/Input.h"
#include "quilt/View.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Quilt {

class Desktop;

class TextField {
public:
    static constexpr std::size_t kLongest = 4096;

    // All of `text` is selected: typing replaces it. `scale`: pixels a unit.
    TextField(std::string_view text, const Rectangle& bounds, std::shared_ptr<Images::TextFont> font,
              double scale);

    // On `surface`, for a control at `at`: large enough to type in, and within it.
    static Rectangle place(const std::optional<Rectangle>& at, const Rectangle& surface, double scale);

    const Rectangle& bounds() const { return bounds_; }
    std::string text() const;
    bool changed() const { return text_ != first_; }

    // False: not a key of text fields. Enter and escape are the caller's.
    bool key(const KeyEvent& event, Desktop& desktop);
    void insert(std::u16string_view text); // in place of what is selected

    // At `x` of the surface.
    void pressed(std::int32_t x, bool extend);
    void dragged(std::int32_t x) { pressed(x, true); }
    void selectWord(); // that the caret is in or at

    // `context` is that of the surface.
    void draw(const DrawContext& context) const;

    std::size_t caret() const { return caret_; }

private:
    std::size_t selectionStart() const { return caret_ < anchor_ ? caret_ : anchor_; }
    std::size_t selectionEnd() const { return caret_ < anchor_ ? anchor_ : caret_; }
    std::u16string selected() const {
        return text_.substr(selectionStart(), selectionEnd() - selectionStart());
    }
    void moveTo(std::size_t place, bool extend);
    void erase(std::size_t from, std::size_t to);
    double widthTo(std::size_t place) const;
    std::size_t placeAt(double x) const;
    std::size_t wordFrom(std::size_t place, bool backwards) const;
    bool clipboardKey(char32_t letter, Desktop& desktop);
    void scrollToCaret();

    std::u16string text_;
    std::u16string first_;
    std::size_t caret_ = 0;
    std::size_t anchor_ = 0; // the other end of what is selected
    Rectangle bounds_;
    std::shared_ptr<Images::TextFont> font_; // nullptr: nothing can be seen of the letters
    double scale_;
    double scroll_ = 0; // of the text to the left, pixels
};

} // namespace Quilt
