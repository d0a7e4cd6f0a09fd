#include "quilt/views/Control.h"

#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/TextField.h"
#include "quilt/drawing/Painting.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <exception>
#include <utility>

namespace Quilt {

namespace {

constexpr Colour kFocusColour = 0xB0B0B0B0; // half of white

constexpr double kPageSteps = 10; // of wheelStep

std::string optionalString(const Properties& properties, std::string_view name) {
    return properties.has(name) ? properties.string(name) : std::string();
}

} // namespace

std::string numberText(double value) {
    std::array<char, 32> digits{};
    constexpr int kDigits = 9; // what a parameter, a float, needs
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                   std::chars_format::general, kDigits)
                         .ptr;
    return {digits.data(), end};
}

std::optional<double> numberOf(std::string_view text) {
    if (const auto truth = wholeBoolean(text)) {
        return *truth ? 1 : 0;
    }
    return wholeNumber(text);
}

Control::Control(const ViewSetup& setup)
    : View(setup), menuAction_(setup.properties.string("menuAction")),
      menuParams_(setup.properties.raw("menuParams")),
      focusable_(setup.properties.knows("focusable") && setup.properties.boolean("focusable")) {}

void Control::pressed(const MouseEvent& event) {
    if (event.button == MouseButton::right && !menuAction_.empty()) {
        perform(menuAction_, menuParams_);
    }
}

void Control::refresh() {
    View::refresh();
}

void Control::perform(const std::string& action, const std::string& params) {
    if (!action.empty()) {
        document().perform(action, params, this);
    }
}

void Control::drawFocus(const DrawContext& context, double radius) const {
    if (document().editor().interaction().focusShown() == this) {
        frameBox(context, area(), kFocusColour, std::max(1.0, pixelsOf(document(), 1)), radius);
    }
}

void Gesture::begin() {
    if (std::exchange(on_, true)) {
        return;
    }
    Variables& variables = view_.document().variables();
    before_ = variables.find(variable_);
    written_ = before_;
    if (auto* const provider = variables.provider()) {
        provider->beginGesture(variable_);
    }
}

void Gesture::write(const std::string& value) {
    if (written_ == value) {
        return;
    }
    written_ = value;
    try {
        view_.document().variables().set(variable_, value);
    } catch (const std::exception& error) {
        view_.document().reportError("Error writing a variable", error.what());
    }
}

void Gesture::end() {
    if (std::exchange(on_, false)) {
        if (auto* const provider = view_.document().variables().provider()) {
            provider->endGesture(variable_);
        }
    }
}

void Gesture::cancel() {
    if (on_ && before_) {
        write(*before_);
    }
    end();
}

ValueControl::ValueControl(const ViewSetup& setup)
    : Control(setup), variable_(setup.properties.string("variable")),
      textVariable_(optionalString(setup.properties, "textVariable")),
      range_(setup.properties.range("range")), steps_(setup.properties.integer("steps")),
      fine_(setup.properties.number("fine")), wheelStep_(setup.properties.number("wheelStep")),
      dragLength_(std::max(1.0, setup.properties.number("dragLength") * document().scale().factor())),
      gesture_(*this, variable_) {
    if (setup.properties.has("default")) {
        default_ = setup.properties.number("default");
    }
}

void ValueControl::refresh() {
    Control::refresh();
    const auto text = document().variables().find(variable_);
    const double value = (text ? numberOf(*text) : std::nullopt).value_or(range_.from);
    if (value != value_) {
        value_ = value;
        invalidate();
    }
}

double ValueControl::inSteps(double position) const {
    position = std::clamp(position, 0.0, 1.0);
    return steps_ > 1 ? std::round(position * (steps_ - 1)) / (steps_ - 1) : position;
}

void ValueControl::moveTo(double position) {
    gesture_.write(numberText(range_.value(inSteps(position))));
}

void ValueControl::resetToDefault() {
    if (default_) {
        gesture_.write(numberText(*default_));
    } else if (const auto given = document().variables().find(variable_ + ".default")) {
        gesture_.write(*given);
    }
}

void ValueControl::pressed(const MouseEvent& event) {
    if (event.button != MouseButton::left) {
        Control::pressed(event);
        return;
    }
    gesture_.begin();
    dragging_ = event.clicks < 2;
    lastAt_ = event.at;
    dragPosition_ = position();
    if (!dragging_) {
        resetToDefault();
    } else if (const auto jump = jumpTo(event.at)) {
        dragPosition_ = std::clamp(*jump, 0.0, 1.0);
        moveTo(dragPosition_);
    }
}

void ValueControl::dragged(const MouseEvent& event) {
    if (!gesture_.on() || !dragging_ || event.at == lastAt_) {
        return;
    }
    const double amount = travelled(lastAt_, event.at) * (event.modifiers.shift ? fine_ : 1);
    lastAt_ = event.at;
    if (amount != 0) {
        dragPosition_ = std::clamp(dragPosition_ + amount, 0.0, 1.0);
        moveTo(dragPosition_);
    }
}

void ValueControl::released(const MouseEvent& event) {
    dragged(event);
    dragging_ = false;
    gesture_.end();
}

void ValueControl::step(double amount, const Modifiers& modifiers) {
    amount *= modifiers.shift ? fine_ : 1;
    if (steps_ > 1) {
        // Never less than to the next value.
        const double least = 1.0 / (steps_ - 1);
        amount = std::copysign(std::max(std::abs(amount), least), amount);
    }
    gesture_.begin();
    moveTo(position() + amount);
    gesture_.end();
}

bool ValueControl::wheel(const WheelEvent& event) {
    if (event.steps != 0) {
        step(event.steps * wheelStep_, event.modifiers);
    }
    return true;
}

bool ValueControl::edit(char32_t first) {
    if (textVariable_.empty()) {
        return false;
    }
    const std::string typed = first == 0 ? std::string() : std::string(1, static_cast<char>(first));
    document().editor().editText(
        {document().variables().find(textVariable_).value_or(""), area().movedBy(origin()),
         [handle = document().handle(), variable = textVariable_](const std::string& text) {
             if (*handle == nullptr) {
                 return;
             }
             try {
                 (*handle)->variables().set(variable, text);
             } catch (const std::exception& error) {
                 (*handle)->reportError("Error writing a variable", error.what());
             }
         }});
    document().editor().typeInto(typed);
    return true;
}

bool ValueControl::key(const KeyEvent& event) {
    if (event.modifiers.control || event.modifiers.alt) {
        return false;
    }
    switch (event.key) {
    case Key::up:
    case Key::right:
        step(wheelStep_, event.modifiers);
        return true;
    case Key::down:
    case Key::left:
        step(-wheelStep_, event.modifiers);
        return true;
    case Key::pageUp:
        step(kPageSteps * wheelStep_, event.modifiers);
        return true;
    case Key::pageDown:
        step(-kPageSteps * wheelStep_, event.modifiers);
        return true;
    case Key::home:
    case Key::end:
        gesture_.begin();
        moveTo(event.key == Key::home ? 0 : 1);
        gesture_.end();
        return true;
    case Key::del:
        gesture_.begin();
        resetToDefault();
        gesture_.end();
        return true;
    case Key::enter:
        return edit(0);
    case Key::character:
        return ((event.character >= U'0' && event.character <= U'9') || event.character == U'-' ||
                event.character == U'.') &&
               edit(event.character);
    default:
        return false;
    }
}

} // namespace Quilt
