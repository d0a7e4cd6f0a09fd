// What the views that answer to a hand have in common: an action and a menu, the look of having the keys, and
// for those that change a value, the value.
#pragma once

#include "quilt/ActionHandler.h"
#include "quilt/Properties.h"
#include "quilt/View.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace Quilt {

// Calls an action of its layout; the right button another one, usually a menu.
class Control : public View {
public:
    explicit Control(const ViewSetup& setup);

    bool hit(Point) const override { return true; }
    void pressed(const MouseEvent& event) override;
    bool focusable() const override { return focusable_ && enabled(); }
    void focused(bool) override { invalidate(); }
    void refresh() override;

protected:
    virtual bool enabled() const { return true; }
    void perform(const std::string& action, const std::string& params);
    void drawFocus(const DrawContext& context, double radius) const;

private:
    std::string menuAction_;
    std::string menuParams_;
    bool focusable_;
};

// Writes what the user does to a variable, between the begin and the end of a gesture.
class Gesture {
public:
    Gesture(const View& view, std::string variable) : view_(view), variable_(std::move(variable)) {}
    ~Gesture() { end(); }
    Gesture(const Gesture&) = delete;
    Gesture& operator=(const Gesture&) = delete;

    bool on() const { return on_; }
    void begin();
    void write(const std::string& value); // nothing when it is the last one written
    void end();
    void cancel(); // with the value that the variable had when it began

private:
    const View& view_;
    std::string variable_;
    std::optional<std::string> before_;
    std::optional<std::string> written_;
    bool on_ = false;
};

// A variable's value on the way between two ends, moved by drag, wheel and keys. Where the mouse has to go
// for it, and what it looks like, derived classes say.
class ValueControl : public Control {
public:
    explicit ValueControl(const ViewSetup& setup);

    void pressed(const MouseEvent& event) override;
    void dragged(const MouseEvent& event) override;
    void released(const MouseEvent& event) override;
    void cancelled() override { gesture_.cancel(); }
    bool wheel(const WheelEvent& event) override;
    bool key(const KeyEvent& event) override;
    void refresh() override;

protected:
    double position() const { return range_.position(value_); } // 0 to 1
    const Range& range() const { return range_; }

    // How much of the way a movement of the mouse is.
    virtual double travelled(Point from, Point to) const = 0;
    // Where a press at `at` moves the value at once; nullopt: nowhere.
    virtual std::optional<double> jumpTo(Point at) const {
        static_cast<void>(at);
        return std::nullopt;
    }
    double dragLength() const { return dragLength_; }

private:
    void moveTo(double position);
    void step(double amount, const Modifiers& modifiers); // a gesture of its own
    void resetToDefault();
    bool edit(char32_t first);
    double inSteps(double position) const;

    std::string variable_;
    std::string textVariable_;
    Range range_;
    std::int32_t steps_;
    std::optional<double> default_;
    double fine_;
    double wheelStep_;
    double dragLength_; // pixels
    double value_ = 0;
    Gesture gesture_;
    bool dragging_ = false;
    double dragPosition_ = 0; // as if there were no steps
    Point lastAt_;
};

// As variables hold numbers.
std::string numberText(double value);
// Of a variable's text: a number, or true for 1 and false for 0.
std::optional<double> numberOf(std::string_view text);

} // namespace Quilt
