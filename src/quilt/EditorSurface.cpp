// What the window asks of an editor: to draw, and to take the mouse and the keys; and the field over the
// surface in which text is typed.
#include "images/ImageLibrary.h"
#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/TextField.h"
#include "quilt/Unicode.h"
#include "quilt/View.h"
#include "quilt/drawing/Painting.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace Quilt {

void Editor::draw(const Drawing::SurfaceView& surface, const Rectangle& part) {
    if (root_ == nullptr) {
        return;
    }
    const Rectangle inside = intersection(part, {0, 0, surface.width, surface.height});
    const auto target = surface.part({inside.left, inside.top, inside.width, inside.height});
    if (target.isEmpty()) {
        return;
    }
    for (int y = 0; y < target.height; ++y) {
        std::fill_n(target.row(y), target.width, Drawing::kBlack);
    }
    Drawing::Canvas canvas(target);
    const DrawContext context{canvas, {-inside.left, -inside.top}};
    try {
        root_->prepareTree();
        root_->drawTree(context);
        if (field_ != nullptr) {
            field_->draw(context);
        }
    } catch (const std::exception& error) {
        // The next picture may succeed, this one is shown as far as it got.
        errors_.add({"Error drawing views", error.what(), {}, nullptr});
    }
}

void Editor::prepare() {
    if (root_ == nullptr) {
        return;
    }
    try {
        root_->prepareTree();
    } catch (const std::exception& error) {
        errors_.add({"Error drawing views", error.what(), {}, nullptr});
    }
    showErrors();
}

template <typename Event>
auto Editor::handle(const Event& event) {
    struct Handling {
        Editor& editor;
        explicit Handling(Editor& of) : editor(of) { ++editor.handling_; }
        ~Handling() { --editor.handling_; }
        Handling(const Handling&) = delete;
        Handling& operator=(const Handling&) = delete;
    };
    bool used = false;
    if (root_ != nullptr) {
        const Handling handling(*this);
        try {
            used = event();
        } catch (const std::exception& error) {
            errors_.add({"Error handling input", error.what(), {}, nullptr});
        }
    }
    settle();
    return used;
}

void Editor::mousePressed(const MouseEvent& event) {
    handle([&] {
        if (field_ != nullptr && field_->bounds().contains(event.at)) {
            const bool wholeWord = event.button == MouseButton::left && event.clicks == 2;
            fieldPressed_ = event.button == MouseButton::left && !wholeWord;
            field_->pressed(event.at.x, event.modifiers.shift);
            if (wholeWord) {
                field_->selectWord();
            }
            invalidate(field_->bounds());
            return true;
        }
        if (field_ != nullptr) {
            endTextEdit(field_->changed() ? std::optional(field_->text()) : std::nullopt);
        }
        interaction_.mousePressed(event);
        return true;
    });
}

void Editor::mouseReleased(const MouseEvent& event) {
    handle([&] {
        if (std::exchange(fieldPressed_, false)) {
            return true;
        }
        interaction_.mouseReleased(event);
        return true;
    });
}

void Editor::mouseMoved(const MouseEvent& event) {
    handle([&] {
        if (fieldPressed_ && field_ != nullptr) {
            field_->dragged(event.at.x);
            invalidate(field_->bounds());
            return true;
        }
        interaction_.mouseMoved(event);
        return true;
    });
}

void Editor::mouseLeft() {
    handle([&] {
        interaction_.mouseLeft();
        return true;
    });
}

void Editor::captureLost() {
    handle([&] {
        fieldPressed_ = false;
        interaction_.cancel();
        return true;
    });
}

bool Editor::wheel(const WheelEvent& event) {
    return handle([&] { return interaction_.wheel(event); });
}

bool Editor::key(const KeyEvent& event) {
    return handle([&] {
        if (field_ == nullptr) {
            return interaction_.key(event);
        }
        if (event.key == Key::escape) {
            endTextEdit(std::nullopt);
        } else if (event.key == Key::enter) {
            endTextEdit(field_->text());
        } else if (field_->key(event, services_.desktop)) {
            invalidate(field_->bounds());
        }
        return true; // none of the host's while somebody types
    });
}

void Editor::editText(TextEdit edit) {
    endTextEdit(std::nullopt);
    textEdit_ = std::move(edit);
    placeField();
}

void Editor::typeInto(std::string_view text) {
    if (field_ != nullptr && !text.empty()) {
        field_->insert(toUtf16(text));
    }
}

// Also when the surface is another one: what has been typed stays.
void Editor::placeField() {
    if (!textEdit_ || root_ == nullptr) {
        return;
    }
    const double scale = document_->scale().factor();
    std::shared_ptr<Images::TextFont> font;
    try {
        font = fonts_.get(
            "field", Images::OutlineFontSpecification{.name = "sans-serif", .size = 12, .colour = 0xFF1A1B1F},
            scale);
    } catch (const std::exception& error) {
        errors_.add({"Error loading font", error.what(), {}, nullptr});
    }
    const std::string text = field_ != nullptr ? field_->text() : textEdit_->text;
    field_ = std::make_unique<TextField>(text, TextField::place(textEdit_->at, root_->bounds(), scale),
                                         std::move(font), scale);
    invalidate(field_->bounds());
}

void Editor::endTextEdit(std::optional<std::string> typed) {
    if (field_ != nullptr) {
        invalidate(field_->bounds());
        field_.reset();
    }
    fieldPressed_ = false;
    if (const auto edit = std::exchange(textEdit_, std::nullopt); edit && typed) {
        edit->typed(*std::move(typed));
    }
}

} // namespace Quilt
