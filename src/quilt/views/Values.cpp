#include "quilt/Document.h"
#include "quilt/drawing/Painting.h"
#include "quilt/views/Control.h"
#include "quilt/views/Rows.h"
#include "quilt/views/Views.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Quilt {

namespace {

using namespace Rows;

constexpr Property kSlider[] = {
    {"image", image, "", "The handle."},
    {"film", film, "", "Frames for all values, in place of the handle."},
    {"color", color, "", "Fills the way from the beginning to the value."},
    {"size", number, "10", "The handle's length along the way, in units, when it has no image.", "", 0, 1000},
    {"handleColor", color, "", "Of the handle when it has no image."},
    {"jump", boolean, "false", "Whether a press moves the handle to the mouse."},
};

constexpr Property kKnob[] = {
    {"film", film, "", "Frames for all values. Without them an arc is drawn."},
    {"color", color, "white", "Of the arc up to the value."},
    {"trackColor", color, "#404040", "Of the rest of the arc."},
    {"pointerColor", color, "", "Of a line from the middle to the value."},
    {"thickness", number, "3", "Of the arc, in units.", "", 0, 1000},
    {"origin", number, "", "The value from which the arc is drawn; without one the range's beginning."},
};

constexpr Property kDragArea[] = {
    {"xVariable", variable, "", "Changed by dragging to the right."},
    {"xRange", range, "{ 0, 1 }", "Its values at the left and at the right."},
    {"xDefault", number, "", "What a double click sets."},
    {"yVariable", variable, "", "Changed by dragging up."},
    {"yRange", range, "{ 0, 1 }", "Its values at the bottom and at the top."},
    {"yDefault", number, "", "What a double click sets."},
    {"fine", number, "0.1", "How much slower the values move with the shift key.", "", 0.0001, 1},
    {"image", image, "", "The handle; without one nothing is to be seen."},
};

class Slider : public ValueControl {
public:
    explicit Slider(const ViewSetup& setup)
        : ValueControl(setup), box_(setup.properties, document()), image_(setup.properties, "image"),
          film_(setup.properties, "film"), colour_(setup.properties, "color"),
          handleColour_(setup.properties, "handleColor"),
          size_(
              static_cast<std::int32_t>(std::lround(pixelsOf(document(), setup.properties.number("size"))))),
          horizontal_(setup.properties.string("orientation") == "horizontal"),
          jump_(setup.properties.boolean("jump")), ownLength_(setup.properties.has("dragLength")) {}

    void prepare() override {
        box_.load(document());
        image_.load(document());
        film_.load(document());
        colour_.load(document());
        handleColour_.load(document());
    }

    void draw(const DrawContext& context) const override {
        box_.draw(context, area());
        if (const auto* const film = film_.get()) {
            drawFilm(context, area(), *film, position() * (film->frames() - 1), {0.5, 0.5});
        }
        const Rectangle handle = this->handle();
        if (colour_.get()) {
            const std::int32_t middle = along(handle.origin()) + handleLength() / 2;
            fillBox(context,
                    horizontal_ ? Rectangle{0, 0, middle, area().height}
                                : Rectangle{0, middle, area().width, area().height - middle},
                    *colour_.get(), box_.radius());
        }
        if (const auto* const image = image_.get()) {
            drawImage(context, handle, *image, {.align = {0.5, 0.5}});
        } else if (handleColour_.get()) {
            fillBox(context, handle, *handleColour_.get(), box_.radius());
        }
        drawFocus(context, box_.radius());
    }

protected:
    Cursor ownCursor(Point) const override { return horizontal_ ? Cursor::horizontal : Cursor::vertical; }

    double travelled(Point from, Point to) const override {
        const double length = ownLength_ ? dragLength() : std::max(1, way());
        const double pixels = along(to) - along(from);
        return (horizontal_ ? pixels : -pixels) / length;
    }

    std::optional<double> jumpTo(Point at) const override {
        if (!jump_ || handle().contains(at)) {
            return std::nullopt;
        }
        const double part = (along(at) - handleLength() / 2.0) / std::max(1, way());
        return horizontal_ ? part : 1 - part;
    }

private:
    std::int32_t along(Point at) const { return horizontal_ ? at.x : at.y; }
    std::int32_t handleLength() const {
        const auto* const image = image_.get();
        return image == nullptr ? size_ : horizontal_ ? image->width() : image->height();
    }
    // What the handle's beginning can move.
    std::int32_t way() const { return (horizontal_ ? area().width : area().height) - handleLength(); }
    Rectangle handle() const {
        const auto at = static_cast<std::int32_t>(
            std::lround(std::max(0, way()) * (horizontal_ ? position() : 1 - position())));
        return horizontal_ ? Rectangle{at, 0, handleLength(), area().height}
                           : Rectangle{0, at, area().width, handleLength()};
    }

    Box box_;
    ImageAsset image_;
    FilmAsset film_;
    ColourAsset colour_;
    ColourAsset handleColour_;
    std::int32_t size_;
    bool horizontal_;
    bool jump_;
    bool ownLength_;
};

// Three quarters of a turn, the gap at the bottom.
constexpr double kFirstAngle = 0.75 * std::numbers::pi; // clockwise from the right
constexpr double kTurn = 1.5 * std::numbers::pi;

class Knob : public ValueControl {
public:
    explicit Knob(const ViewSetup& setup)
        : ValueControl(setup), film_(setup.properties, "film"), colour_(setup.properties, "color"),
          trackColour_(setup.properties, "trackColor"), pointerColour_(setup.properties, "pointerColor"),
          thickness_(pixelsOf(document(), setup.properties.number("thickness"))),
          arc_(!film_.given() || setup.properties.has("color") || setup.properties.has("thickness")) {
        if (setup.properties.has("origin")) {
            origin_ = range().position(setup.properties.number("origin"));
        }
    }

    void prepare() override {
        film_.load(document());
        colour_.load(document());
        trackColour_.load(document());
        pointerColour_.load(document());
    }

    void draw(const DrawContext& context) const override {
        if (clipOf(context, area()).isEmpty()) {
            return;
        }
        if (const auto* const film = film_.get()) {
            drawFilm(context, area(), *film, position() * (film->frames() - 1), {0.5, 0.5});
        }
        const double radius = std::min(area().width, area().height) / 2.0 - thickness_ / 2;
        if (arc_ && thickness_ > 0 && radius > 0) {
            drawArc(context, radius, 0, 1, trackColour_);
            drawArc(context, radius, std::min(origin_, position()), std::max(origin_, position()), colour_);
        }
        if (pointerColour_.get() && radius > 0) {
            Drawing::Path line;
            line.moveTo(onCircle(context, 0.35 * radius, position()));
            line.lineTo(onCircle(context, 0.8 * radius, position()));
            stroke(context, line, *pointerColour_.get(), std::max(1.0, pixelsOf(document(), 1.5)));
        }
        drawFocus(context, std::min(area().width, area().height) / 2.0);
    }

protected:
    Cursor ownCursor(Point) const override { return Cursor::vertical; }
    double travelled(Point from, Point to) const override { return (from.y - to.y) / dragLength(); }

private:
    Drawing::Point onCircle(const DrawContext& context, double radius, double position) const {
        const Drawing::Rect all = placed(context, area());
        const double angle = kFirstAngle + kTurn * position;
        return {all.x + all.width / 2 + radius * std::cos(angle),
                all.y + all.height / 2 + radius * std::sin(angle)};
    }
    static void stroke(const DrawContext& context, const Drawing::Path& path, Colour colour, double width) {
        Drawing::Pen pen;
        pen.paint.source = colour;
        pen.width = width;
        pen.caps = Drawing::Caps::round;
        context.canvas.stroke(path, pen, {});
    }
    void drawArc(const DrawContext& context, double radius, double from, double to,
                 const ColourAsset& colour) const {
        if (!colour.get() || to - from <= 0) {
            return;
        }
        Drawing::Path arc;
        arc.moveTo(onCircle(context, radius, from));
        arc.arcTo(radius, radius, 0, (to - from) * kTurn > std::numbers::pi, true,
                  onCircle(context, radius, to));
        stroke(context, arc, *colour.get(), thickness_);
    }

    FilmAsset film_;
    ColourAsset colour_;
    ColourAsset trackColour_;
    ColourAsset pointerColour_;
    double thickness_;
    bool arc_;
    double origin_ = 0;
};

// One of the two ways of a drag area.
class Axis {
public:
    Axis(const View& view, const Properties& properties, const std::string& letter)
        : view_(view),
          variable_(properties.has(letter + "Variable") ? properties.string(letter + "Variable") : ""),
          range_(properties.range(letter + "Range")), gesture_(view, variable_) {
        if (properties.has(letter + "Default")) {
            default_ = properties.number(letter + "Default");
        }
    }

    double position() const { return position_; }
    bool refresh() {
        const auto text = given() ? view_.document().variables().find(variable_) : std::nullopt;
        const double position =
            range_.position((text ? numberOf(*text) : std::nullopt).value_or(range_.from));
        return std::exchange(position_, position) != position;
    }
    void begin() {
        if (given()) {
            gesture_.begin();
            dragPosition_ = position_;
        }
    }
    void move(double amount) {
        if (gesture_.on() && amount != 0) {
            dragPosition_ = std::clamp(dragPosition_ + amount, 0.0, 1.0);
            gesture_.write(numberText(range_.value(dragPosition_)));
        }
    }
    void reset() {
        if (gesture_.on() && default_) {
            gesture_.write(numberText(*default_));
        }
    }
    void end() { gesture_.end(); }
    void cancel() { gesture_.cancel(); }

private:
    bool given() const { return !variable_.empty(); }

    const View& view_;
    std::string variable_;
    Range range_;
    std::optional<double> default_;
    Gesture gesture_;
    double position_ = 0;
    double dragPosition_ = 0;
};

class DragArea : public Control {
public:
    explicit DragArea(const ViewSetup& setup)
        : Control(setup), x_(*this, setup.properties, "x"), y_(*this, setup.properties, "y"),
          fine_(setup.properties.number("fine")), image_(setup.properties, "image") {}

    void prepare() override { image_.load(document()); }
    void refresh() override {
        Control::refresh();
        const bool movedX = x_.refresh();
        if (y_.refresh() || movedX) {
            invalidate();
        }
    }
    void draw(const DrawContext& context) const override {
        if (const auto* const image = image_.get()) {
            drawImage(context, area(), *image, {.align = {x_.position(), 1 - y_.position()}});
        }
    }

    void pressed(const MouseEvent& event) override {
        if (event.button != MouseButton::left) {
            Control::pressed(event);
            return;
        }
        x_.begin();
        y_.begin();
        dragging_ = event.clicks < 2;
        lastAt_ = event.at;
        if (!dragging_) {
            x_.reset();
            y_.reset();
        }
    }
    void dragged(const MouseEvent& event) override {
        if (dragging_) {
            const double part = event.modifiers.shift ? fine_ : 1;
            x_.move(part * (event.at.x - lastAt_.x) / std::max(1, area().width));
            y_.move(part * (lastAt_.y - event.at.y) / std::max(1, area().height));
            lastAt_ = event.at;
        }
    }
    void released(const MouseEvent& event) override {
        dragged(event);
        dragging_ = false;
        x_.end();
        y_.end();
    }
    void cancelled() override {
        dragging_ = false;
        x_.cancel();
        y_.cancel();
    }

protected:
    Cursor ownCursor(Point) const override { return Cursor::move; }

private:
    Axis x_;
    Axis y_;
    double fine_;
    ImageAsset image_;
    bool dragging_ = false;
    Point lastAt_;
};

} // namespace

ViewType sliderType() {
    return {"slider",
            "Moves a variable's value along a straight way.",
            {kValue, kOrientation, kSlider, kMenu, kBox, kFocus},
            make<Slider>};
}

ViewType knobType() {
    return {
        "knob", "Turns a variable's value: drag up and down.", {kValue, kKnob, kMenu, kFocus}, make<Knob>};
}

ViewType dragAreaType() {
    return {"dragArea",
            "A plane on which two variables are dragged at once.",
            {kDragArea, kMenu},
            make<DragArea>};
}

} // namespace Quilt
